#!/usr/bin/env bash
# Builds and writes the Debian packages (library, development files, page host with the simulator,
# Designer plugin) into build/packages. Install them with `sudo apt-get install ./build/packages/*.deb`.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${NXR_BUILD_DIR:-$root/build}"
"$root/scripts/build.sh"
cpack --config "$build/CPackConfig.cmake" -B "$build/packages"
rm -rf "$build/packages/_CPack_Packages"
ls "$build"/packages/*.deb
