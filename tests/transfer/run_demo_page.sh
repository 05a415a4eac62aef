#!/usr/bin/env bash
# Runs pages/transfer-demo headless in the real page host against the controller simulator and
# checks that it copied, listed and uploaded.   run_demo_page.sh HOST-EXE SIM-SCRIPT PAGE-FOLDER
set -euo pipefail
host_exe="$1"; sim="$2"; page="$3"
work="$(mktemp -d "${TMPDIR:-/tmp}/nxr-transfer-page.XXXXXX")"
/usr/bin/python3 "$sim" --ftp-port 0 --http-port 0 --root "$work/controller" --log "$work/protocol.log" \
  > "$work/sim.out" 2>&1 &
sim_pid=$!
trap 'kill $sim_pid 2>/dev/null || true; wait $sim_pid 2>/dev/null || true; rm -rf "$work"' EXIT
for _ in $(seq 1 200); do
  grep -q '^NXRSIM READY' "$work/sim.out" 2>/dev/null && break
  sleep 0.05
done
ready="$(grep -m1 '^NXRSIM READY' "$work/sim.out")"
ftp="$(sed -E 's/.* ftp=([0-9]+).*/\1/' <<<"$ready")"
http="$(sed -E 's/.* http=([0-9]+).*/\1/' <<<"$ready")"
TMPDIR="$work" QT_QPA_PLATFORM=offscreen "$host_exe" --headless --script-arg server=127.0.0.1 \
  --script-arg ftpPort="$ftp" --script-arg httpPort="$http" "$page" | tee "$work/page.out"
grep -q '^Copy, list, drives and upload done.$' "$work/page.out"
cmp "$work/controller/MC/VISION/TOOLS.TXT" "$work/controller/UD1/IMAGES/COPY_OF_TOOLS.TXT"
grep -q '^FTP> STOR UD1:\\IMAGES\\COPY_OF_TOOLS.TXT$' "$work/protocol.log"
echo "transfer demo page: ok"
