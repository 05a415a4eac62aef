#!/usr/bin/env bash
# Builds the libFuzzer targets (fuzz/) with clang into ./build-fuzz and runs each one for SECONDS
# (default 30) from its seed corpus. Fails when a target crashes, leaks or breaks a check; the
# input that did it is left in build-fuzz/artifacts/.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
seconds="${1:-30}"
build="${NXR_FUZZ_BUILD_DIR:-$root/build-fuzz}"
targets=(listing paths conversions image)

"$root/scripts/deps.sh"
if [ ! -f "$build/build.ninja" ]; then
  launcher=()
  command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  CXX=clang++ cmake -S "$root/fuzz" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${launcher[@]}"
fi
start=$(date +%s)
ninja -C "$build" -j"$(nproc)"
echo "fuzz targets built in $(( $(date +%s) - start )) s"

mkdir -p "$build/artifacts"
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}"
export QT_QPA_PLATFORM=offscreen
failed=()
for t in "${targets[@]}"; do
  # A scratch copy of the seeds: new inputs found in this run stay out of the repository.
  work="$build/corpus/$t"
  rm -rf "$work" && mkdir -p "$work"
  echo "== ${t}_fuzzer: ${seconds} s"
  if ! "$build/${t}_fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=4096 \
      -print_final_stats=0 -artifact_prefix="$build/artifacts/${t}-" "$work" "$root/fuzz/corpus/$t" \
      2>"$build/$t.log"; then
    tail -40 "$build/$t.log"
    failed+=("$t")
  else
    grep -E '^Done [0-9]+ runs' "$build/$t.log" || tail -3 "$build/$t.log"
  fi
done
echo "fuzz: $(( ${#targets[@]} - ${#failed[@]} )) passed, ${#failed[@]} failed"
if [ ${#failed[@]} -gt 0 ]; then
  echo "fuzz targets that failed: ${failed[*]} (inputs in $build/artifacts/)" >&2
  exit 1
fi
