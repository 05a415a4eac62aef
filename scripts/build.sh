#!/usr/bin/env bash
# Configures (once) and builds incrementally into ./build. Extra arguments are ninja targets.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${NXR_BUILD_DIR:-$root/build}"
if [ ! -f "$build/build.ninja" ]; then
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo ${NXR_CMAKE_ARGS:-}
fi
ninja -C "$build" -j"$(nproc)" "$@"
