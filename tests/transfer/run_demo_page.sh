#!/usr/bin/env bash
# Runs pages/transfer-demo headless in the real page host against the controller simulator and
# checks that it copied, listed and uploaded.   run_demo_page.sh HOST-EXE SIM-SCRIPT PAGE-FOLDER
set -euo pipefail
host_exe="$1"; sim="$2"; page="$3"
work="$(mktemp -d "${TMPDIR:-/tmp}/nxr-transfer-page.XXXXXX")"
. "$(dirname "$sim")/start-sim.sh"
trap 'kill ${sim_pid:-} 2>/dev/null || true; wait ${sim_pid:-} 2>/dev/null || true; rm -rf "$work"' EXIT
start_simulator "$work" --log "$work/protocol.log"
ftp="$ftp_port"
http="$http_port"
TMPDIR="$work" QT_QPA_PLATFORM=offscreen "$host_exe" --headless --script-arg server=127.0.0.1 \
  --script-arg ftpPort="$ftp" --script-arg httpPort="$http" "$page" | tee "$work/page.out"
grep -q '^Copy, list, drives and upload done.$' "$work/page.out"
cmp "$work/controller/MC/VISION/TOOLS.TXT" "$work/controller/UD1/IMAGES/COPY_OF_TOOLS.TXT"
grep -q '^FTP> STOR UD1:\\IMAGES\\COPY_OF_TOOLS.TXT$' "$work/protocol.log"
echo "transfer demo page: ok"
