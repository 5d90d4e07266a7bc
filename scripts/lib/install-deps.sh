#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the demo need, when any is missing, and any further
# packages named as arguments. As root it runs apt-get; otherwise it prints the one command to run and fails.
set -euo pipefail

packages=(
    cmake g++ make pkg-config
    qt6-base-dev qt6-serialport-dev libqt6sql6-sqlite
    dbus-daemon dbus-bin
    python3-dbus-next python3-aiosmtpd qtkeychain-qt6-dev openssl
    libtiff-dev libspandsp-dev libtiff-tools efax fonts-dejavu-core
    dpkg-dev lintian desktop-file-utils man-db file binutils gzip
    "$@"
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$'; then
        missing+=("$package")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

command="apt-get update && apt-get install -y --no-install-recommends ${missing[*]}"
if [ "$(id -u)" -ne 0 ]; then
    echo "Missing Debian packages: ${missing[*]}" >&2
    echo "Install them with:  sudo sh -c '$command'" >&2
    exit 1
fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}"
