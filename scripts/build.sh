#!/usr/bin/env bash
# Configures (once) and builds incrementally into ./build. Extra arguments are ninja targets.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${NXR_BUILD_DIR:-$root/build}"
# ccache: paths below the checkout count relative to it, so every clone and work tree shares hits.
export CCACHE_BASEDIR="${CCACHE_BASEDIR:-$root}" CCACHE_NOHASHDIR="${CCACHE_NOHASHDIR:-1}"
if [ ! -f "$build/build.ninja" ]; then
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo ${NXR_CMAKE_ARGS:-}
fi
ninja -C "$build" -j"$(nproc)" "$@"
