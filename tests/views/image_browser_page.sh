#!/usr/bin/env bash
# The image browser page run headless against the controller simulator:
#   image_browser_page.sh NEXARO-PAGE SOURCE-DIR
# The page opens MC:\VISION, has the camera take pictures there, sorts with header clicks and
# exits non-zero when the list answered wrongly.
set -euo pipefail
host_exe="$1"
root="$2"
work="$(mktemp -d "${TMPDIR:-/tmp}/nxr-image-browser.XXXXXX")"
/usr/bin/python3 "$root/sim/controller_sim.py" --ftp-port 0 --http-port 0 --root "$work/controller" \
  > "$work/simulator.out" 2>&1 &
sim_pid=$!
trap 'kill $sim_pid 2>/dev/null || true; wait $sim_pid 2>/dev/null || true; rm -rf "$work"' EXIT
for _ in $(seq 1 100); do
  grep -q '^NXRSIM READY' "$work/simulator.out" 2>/dev/null && break
  kill -0 $sim_pid 2>/dev/null || { cat "$work/simulator.out" >&2; exit 1; }
  sleep 0.1
done
ready="$(grep -m1 '^NXRSIM READY' "$work/simulator.out")"
http_port="$(sed -E 's/.* http=([0-9]+).*/\1/' <<<"$ready")"
ftp_port="$(sed -E 's/.* ftp=([0-9]+).*/\1/' <<<"$ready")"
"$host_exe" --headless --timeout 60000 --script-arg server=127.0.0.1 --script-arg httpPort="$http_port" \
  --script-arg ftpPort="$ftp_port" --script-arg shots="$work" "$root/pages/image-browser"
