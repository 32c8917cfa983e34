#!/usr/bin/env bash
# The test command: installs what is missing, builds, runs the whole suite
# headless, and ends with ctest's summary.
#   --sanitize  builds into build-sanitize/ with AddressSanitizer and
#               UndefinedBehaviorSanitizer and runs the suite there.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
if [ "${1:-}" = "--sanitize" ]; then
  bash "$root/scripts/install-deps.sh"
  build="$root/build-sanitize"
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVO_SANITIZE=ON >/dev/null
  cmake --build "$build" -j"$(nproc)"
  # The settings reach the hosts the tests launch too. Leaks are checked,
  # and nothing is suppressed: Qt, libjpeg and Exiv2 report none here.
  export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:strict_string_checks=1:check_initialization_order=1"
  export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
else
  bash "$root/scripts/build.sh"
  build="$root/build"
fi
cd "$build"
export QT_QPA_PLATFORM=offscreen
ctest --output-on-failure -j"$(nproc)"
