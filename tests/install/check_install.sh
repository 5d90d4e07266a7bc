#!/usr/bin/env bash
# Installs the programs built in BUILD_DIR into a temporary prefix and checks what a desktop session meets there:
# every installed file in install_manifest.txt, a desktop entry that validates, man pages that render and name every
# option of --help, and a private session bus (standard session service folders, XDG_DATA_DIRS into the prefix) that
# starts the installed server. Then builds the .deb and checks it with dpkg -c, dpkg-deb and lintian.
# Usage: check_install.sh SOURCE_DIR BUILD_DIR
set -euo pipefail
src=$1
build=$2
work=$(mktemp -d /tmp/osprel-install.XXXXXX)
prefix=$work/prefix
bus_pid=
server_pid=
cleanup() {
    [ -n "$bus_pid" ] && kill "$bus_pid" 2>/dev/null || true
    [ -n "$server_pid" ] && kill "$server_pid" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT
fail() {
    echo "FAIL: $*" >&2
    exit 1
}
step() { echo "== $*"; }

# The packaging rules of the project over the programs already built: no second build.
configure() { # TREE PREFIX
    cmake -S "$src" -B "$1" -DOSPREL_PACKAGE_ONLY=ON "-DOSPREL_PREBUILT_BIN=$build/bin" "-DCMAKE_INSTALL_PREFIX=$2" \
        >"$1.log" 2>&1 || { cat "$1.log"; fail "configure $1"; }
    cmake --build "$1" >>"$1.log" 2>&1 || { cat "$1.log"; fail "build $1"; }
}

step "install into $prefix"
configure "$work/tree" "$prefix"
cmake --install "$work/tree" >/dev/null
diff <(sort "$work/tree/install_manifest.txt") <(find "$prefix" -type f -o -type l | sort) ||
    fail "install_manifest.txt and the installed files differ"
expected=(
    bin/osprel-emailfax bin/osprel-client
    share/dbus-1/services/org.osprel.EmailFax.service lib/systemd/user/osprel-emailfax.service
    share/dbus-1/interfaces/org.osprel.EmailFax.Factory.xml share/dbus-1/interfaces/org.osprel.EmailFax.clsAlertCls.xml
    share/applications/org.osprel.EmailFax.desktop share/icons/hicolor/scalable/apps/org.osprel.EmailFax.svg
    share/man/man1/osprel-emailfax.1.gz share/man/man1/osprel-client.1.gz
    share/doc/osprel-emailfax/copyright share/doc/osprel-emailfax/changelog.gz
)
for size in 16 22 24 32 48 64 128 256; do
    expected+=("share/icons/hicolor/${size}x${size}/apps/org.osprel.EmailFax.png")
done
for file in "${expected[@]}"; do
    grep -qx "$prefix/$file" "$work/tree/install_manifest.txt" || fail "$file is not installed"
done
service=$prefix/share/dbus-1/services/org.osprel.EmailFax.service
grep -qx "Exec=$prefix/bin/osprel-emailfax --automation" "$service" || fail "service file: $(cat "$service")"
grep -qx "SystemdService=osprel-emailfax.service" "$service" || fail "service file names no unit"
unit=$prefix/lib/systemd/user/osprel-emailfax.service
grep -qx "Type=dbus" "$unit" && grep -qx "BusName=org.osprel.EmailFax" "$unit" &&
    grep -qx "ExecStart=$prefix/bin/osprel-emailfax --automation" "$unit" || fail "unit: $(cat "$unit")"

step "desktop entry and man pages"
desktop-file-validate "$prefix/share/applications/org.osprel.EmailFax.desktop"
for program in osprel-emailfax osprel-client; do
    page=$prefix/share/man/man1/$program.1.gz
    warnings=$(LC_ALL=C MANWIDTH=100 man --warnings -l "$page" 2>&1 >/dev/null)
    [ -z "$warnings" ] || fail "man -l $program: $warnings"
    text=$(LC_ALL=C MANWIDTH=200 man -l "$page" 2>/dev/null)
    grep -q "^SYNOPSIS" <<<"$text" || fail "$program.1 renders no synopsis"
    # Every option and environment variable that --help names is in the page.
    for word in $("$prefix/bin/$program" --help | grep -oE -- '(--[a-z-]+|OSPREL_[A-Z_]+)' | sort -u); do
        grep -qF -- "$word" <<<"$text" || fail "$program.1 does not mention $word"
    done
done
grep -q "^FILES" <<<"$(LC_ALL=C man -l "$prefix/share/man/man1/osprel-emailfax.1.gz" 2>/dev/null)" ||
    fail "osprel-emailfax.1 has no FILES section"

step "activation through the standard session service folders"
mkdir -p "$work/home" "$work/run" "$work/xdg-data"
chmod 700 "$work/run"
cat >"$work/bus.conf" <<CONF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <standard_session_servicedirs/>
  <policy context="default">
    <allow user="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow receive_sender="*"/>
    <allow own="*"/>
  </policy>
</busconfig>
CONF
(
    unset DISPLAY WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS OSPREL_FAX_DEVICES
    export XDG_DATA_DIRS=$prefix/share XDG_DATA_HOME=$work/xdg-data XDG_RUNTIME_DIR=$work/run
    export OSPREL_HOME=$work/home QT_QPA_PLATFORM=offscreen OSPREL_FAX_SYSTEM_PORTS=0
    exec dbus-daemon --config-file="$work/bus.conf" --fork --print-address=1 --print-pid=1 >"$work/bus.out"
)
address=$(sed -n 1p "$work/bus.out")
bus_pid=$(sed -n 2p "$work/bus.out")
[ -n "$address" ] || fail "no private bus"
call() { dbus-send --bus="$address" --print-reply "$@"; }
reply=$(call --dest=org.osprel.EmailFax / org.osprel.EmailFax.Factory.CreateObject) ||
    fail "activation failed"
grep -q 'object path "/clsAlertCls/' <<<"$reply" || fail "CreateObject answered: $reply"
server_pid=$(call --dest=org.freedesktop.DBus / org.freedesktop.DBus.GetConnectionUnixProcessID \
    string:org.osprel.EmailFax | awk '/uint32/ {print $2}')
[ "$(readlink "/proc/$server_pid/exe")" = "$prefix/bin/osprel-emailfax" ] || fail "the bus started another program"
# The installed description and the running server agree on the factory's methods.
introspection=$(call --dest=org.osprel.EmailFax / org.freedesktop.DBus.Introspectable.Introspect)
for method in $(grep -oE '<method name="[A-Za-z]+"' "$prefix/share/dbus-1/interfaces/org.osprel.EmailFax.Factory.xml" |
    cut -d'"' -f2); do
    grep -q "<method name=\"$method\"" <<<"$introspection" || fail "the server has no $method"
done
[ -f "$work/home/EMAILFAX.MDE" ] || fail "the activated server made no database in OSPREL_HOME"
kill "$bus_pid"
bus_pid=
# Without its bus the server ends by itself.
for _ in $(seq 100); do
    kill -0 "$server_pid" 2>/dev/null || break
    sleep 0.1
done
kill -0 "$server_pid" 2>/dev/null && fail "the server outlived its bus"
server_pid=

step "Debian package"
configure "$work/deb" /usr
(cd "$work/deb" && cpack -G DEB >cpack.log 2>&1) || { cat "$work/deb/cpack.log"; fail "cpack"; }
deb=$(ls "$work"/deb/osprel-emailfax_*.deb)
dpkg -c "$deb" | tee "$work/listing"
for file in "${expected[@]}"; do
    grep -q " \./usr/$file\$" "$work/listing" || fail "the package lacks /usr/$file"
done
dpkg-deb -f "$deb" Depends | tee "$work/depends"
grep -q "libqt6core6" "$work/depends" && grep -q "libc6" "$work/depends" || fail "no library dependencies"
dpkg-deb -x "$deb" "$work/unpacked"
for program in osprel-emailfax osprel-client; do
    file "$work/unpacked/usr/bin/$program" | grep -q ", stripped" || fail "$program is not stripped"
done
echo "server: $(stat -c %s "$build/bin/osprel-emailfax") bytes built, $(stat -c %s "$work/unpacked/usr/bin/osprel-emailfax") bytes packaged; package $(stat -c %s "$deb") bytes"
lintian --fail-on error --tag-display-limit 0 "$deb"
echo "PASS"
