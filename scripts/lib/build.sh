#!/usr/bin/env bash
# Configures and builds the project into build/ (or $OSPREL_BUILD_DIR).
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${OSPREL_BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"$(nproc)"
