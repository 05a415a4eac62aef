#!/usr/bin/env bash
# Soak run on demand: one image display loads FRAMES live frames (default 2000) from the
# controller simulator in the real page host, headless; the host's resident memory and open file
# descriptors are sampled every second. Prints the growth from the first sample after warm-up to
# the end.      scripts/soak.sh [FRAMES]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
frames="${1:-2000}"
build="${NXR_BUILD_DIR:-$root/build}"
"$root/scripts/build.sh" nexaro-page >/dev/null
work="$(mktemp -d "${TMPDIR:-/tmp}/nxr-soak.XXXXXX")"
. "$root/sim/start-sim.sh"
trap 'kill ${sim_pid:-} 2>/dev/null || true; wait ${sim_pid:-} 2>/dev/null || true; rm -rf "$work"' EXIT
start_simulator "$work" --log "$work/protocol.log"
mkdir -p "$work/page"
cat > "$work/page/page.ui" <<'UI'
<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0"><class>Page</class><widget class="QWidget" name="Page">
<property name="geometry"><rect><x>0</x><y>0</y><width>800</width><height>600</height></rect></property>
<layout class="QVBoxLayout" name="layout"><item><widget class="NXRImageDisplay" name="display"/></item></layout>
</widget></ui>
UI
cat > "$work/page/page.js" <<'JS'
var frames = Number(host.args.frames);
var done = 0;
display.SetProperty("FTPPortNo", host.args.ftpPort);
display.SetProperty("HTTPPortNo", host.args.httpPort);
function next() {
    display.LoadImage("127.0.0.1", "MC:\\VISION\\GREY640.PNG", "robot", "robot");
    done++;
    if (done % 200 === 0 || done === frames)
        console.log("frames " + done);
    if (done < frames)
        setTimeout(next, 0);
}
setTimeout(next, 0);
JS
TMPDIR="$work" QT_QPA_PLATFORM=offscreen "$build/host/nexaro-page" --headless --timeout 3600000 \
  --script-arg ftpPort="$ftp_port" --script-arg httpPort="$http_port" --script-arg frames="$frames" \
  "$work/page" > "$work/page.out" 2>&1 &
page_pid=$!
samples=()
while kill -0 "$page_pid" 2>/dev/null; do
  rss="$(awk '/^VmRSS/ {print $2}' "/proc/$page_pid/status" 2>/dev/null || true)"
  fds="$(ls "/proc/$page_pid/fd" 2>/dev/null | wc -l || true)"
  [ -n "$rss" ] && samples+=("$rss $fds")
  sleep 1
done
wait "$page_pid" || { echo "the page host failed:"; cat "$work/page.out"; exit 1; }
grep -q "^frames $frames$" "$work/page.out" || { echo "not all frames were loaded:"; tail "$work/page.out"; exit 1; }
n=${#samples[@]}
[ "$n" -ge 3 ] || { echo "too short to measure ($n samples)"; exit 0; }
read -r rss0 fd0 <<<"${samples[1]}"   # after the first second of warm-up
read -r rss1 fd1 <<<"${samples[$((n - 1))]}"
echo "soak: $frames frames in about $n s; resident memory ${rss0} KiB -> ${rss1} KiB" \
     "($(( (rss1 - rss0) )) KiB), open descriptors ${fd0} -> ${fd1}"
