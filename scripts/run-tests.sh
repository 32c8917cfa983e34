#!/usr/bin/env bash
# The test command: installs what is missing, builds, runs the whole suite
# headless, and ends with ctest's summary.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/build.sh"
cd "$root/build"
export QT_QPA_PLATFORM=offscreen
ctest --output-on-failure -j"$(nproc)"
