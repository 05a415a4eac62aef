#!/usr/bin/env bash
# Runs the demo: the vision setup page against the controller simulator.
#   ./scripts/demo.sh [PAGE-FOLDER] [-- extra nexaro-page options]
# With a display it opens the page window; without one it runs headless under Xvfb, writes
# screenshots and says where they are.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
page="$root/pages/vision-setup"
if [ $# -gt 0 ] && [ "$1" != "--" ]; then page="$(cd "$1" && pwd)"; shift; fi
[ "${1:-}" = "--" ] && shift

"$root/scripts/deps.sh"
"$root/scripts/build.sh" nexaro-page
build="${NXR_BUILD_DIR:-$root/build}"
host_exe="$build/host/nexaro-page"

# The simulated controller, on free loopback ports, for as long as the demo runs.
work="$(mktemp -d "${TMPDIR:-/tmp}/nexaro-demo.XXXXXX")"
. "$root/sim/start-sim.sh"
trap 'kill ${sim_pid:-} 2>/dev/null || true; wait ${sim_pid:-} 2>/dev/null || true' EXIT
start_simulator "$work" || exit 1
echo "Controller simulator on 127.0.0.1 (HTTP $http_port, FTP $ftp_port)"

args=(--script-arg server=127.0.0.1 --script-arg httpPort="$http_port" --script-arg ftpPort="$ftp_port"
      --script-arg user=robot --script-arg password=robot)

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [ "${NXR_DEMO_HEADLESS:-0}" != 1 ]; then
  exec "$host_exe" "${args[@]}" "$@" "$page"
fi

shots="$root/out/demo"
mkdir -p "$shots"
echo "No display: running the page headless under Xvfb"
QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1600x1200x24" "$host_exe" --headless \
  --screenshot-dir "$shots" --overwrite-screenshots --script-arg shots="$shots" --screenshot "$shots/final.png" "${args[@]}" "$@" "$page"
echo "Screenshots written to $shots:"
ls -1 "$shots"
