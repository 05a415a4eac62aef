#!/usr/bin/env bash
# Runs every test: installs what is missing, builds, and runs ctest (GUI tests under Xvfb).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/deps.sh"
"$root/scripts/build.sh"
build="${NXR_BUILD_DIR:-$root/build}"
ctest --test-dir "$build" --output-on-failure -j"$(nproc)" "$@"
