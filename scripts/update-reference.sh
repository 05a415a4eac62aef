#!/usr/bin/env bash
# Regenerates docs/reference.md from the built classes (run after changing or adding a class).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${NXR_BUILD_DIR:-$root/build}"
"$root/scripts/build.sh" nexaro-page
"$build/host/nexaro-page" --describe all --format markdown --output "$root/docs/reference.md"
echo "wrote $root/docs/reference.md"
