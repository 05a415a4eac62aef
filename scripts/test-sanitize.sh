#!/usr/bin/env bash
# Builds the whole suite with AddressSanitizer and UndefinedBehaviorSanitizer (LeakSanitizer on)
# into a second build folder and runs every test there. Any sanitizer report fails the test it
# happened in. Extra arguments go to ctest.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/deps.sh"
export NXR_BUILD_DIR="${NXR_SANITIZE_BUILD_DIR:-$root/build-sanitize}"
# Read by CMake when it configures the folder the first time.
export CXXFLAGS="-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer"
export LDFLAGS="-fsanitize=address,undefined"
# shellcheck disable=SC2086 # a list of targets
"$root/scripts/build.sh" ${NXR_SANITIZE_TARGETS:-all}
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:detect_stack_use_after_return=0:${ASAN_OPTIONS:-}"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:${UBSAN_OPTIONS:-}"
export LSAN_OPTIONS="suppressions=$root/scripts/sanitizers.supp:print_suppressions=0:${LSAN_OPTIONS:-}"
ctest --test-dir "$NXR_BUILD_DIR" --output-on-failure -j"$(nproc)" -E "format" "$@"
