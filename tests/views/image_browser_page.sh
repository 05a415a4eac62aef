#!/usr/bin/env bash
# The image browser page run headless against the controller simulator:
#   image_browser_page.sh NEXARO-PAGE SOURCE-DIR
# The page opens MC:\VISION, has the camera take pictures there, sorts with header clicks and
# exits non-zero when the list answered wrongly.
set -euo pipefail
host_exe="$1"
root="$2"
work="$(mktemp -d "${TMPDIR:-/tmp}/nxr-image-browser.XXXXXX")"
. "$root/sim/start-sim.sh"
trap 'kill ${sim_pid:-} 2>/dev/null || true; wait ${sim_pid:-} 2>/dev/null || true; rm -rf "$work"' EXIT
start_simulator "$work"
"$host_exe" --headless --timeout 60000 --screenshot-dir "$work" --script-arg server=127.0.0.1 --script-arg httpPort="$http_port" \
  --script-arg ftpPort="$ftp_port" --script-arg shots="$work" "$root/pages/image-browser"
