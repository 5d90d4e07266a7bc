#!/usr/bin/env bash
# Starts a private session bus that can activate the server from SERVICE_DIR.
# Usage: private-bus.sh SERVICE_DIR WORK_DIR  -> prints "ADDRESS PID"; the bus and everything it starts inherit
# this script's environment (set OSPREL_HOME, OSPREL_TIME_SCALE, QT_QPA_PLATFORM before calling).
set -euo pipefail
service_dir=$1
work_dir=$2
mkdir -p "$work_dir"
config=$work_dir/bus.conf
cat >"$config" <<CONF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <servicedir>$service_dir</servicedir>
  <policy context="default">
    <allow user="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow receive_sender="*"/>
    <allow own="*"/>
  </policy>
</busconfig>
CONF
# The daemon's own output goes to a file: the server it starts inherits it, and a pipe would never close.
dbus-daemon --config-file="$config" --fork --print-address=1 --print-pid=1 >"$work_dir/bus.out" 2>"$work_dir/bus.err" </dev/null
address=$(sed -n 1p "$work_dir/bus.out")
pid=$(sed -n 2p "$work_dir/bus.out")
echo "$address $pid"
