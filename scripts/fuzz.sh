#!/usr/bin/env bash
# Builds the fuzz targets (clang, libFuzzer, ASan, UBSan) into build-fuzz/
# and runs them all at once for SECONDS each, nice'd, on the seed pictures
# plus what earlier runs found (build-fuzz/corpus/). Crashing inputs land in
# build-fuzz/crashes/, logs in build-fuzz/logs/. Exits non-zero when a
# target crashed.
#   bash scripts/fuzz.sh SECONDS [open_picture|replay_commands|metadata|lossless_turn ...]
set -euo pipefail
seconds=${1:?usage: fuzz.sh SECONDS [TARGET...]}
shift
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(open_picture replay_commands metadata lossless_turn)
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build-fuzz"

bash "$root/scripts/install-deps.sh"
# Fuzzing only: clang and its libFuzzer/sanitizer runtimes.
missing=0
for p in clang libclang-rt-dev; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing=1
done
if [ $missing -eq 1 ]; then
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends clang libclang-rt-dev >/dev/null
fi

CC=clang CXX=clang++ cmake -S "$root" -B "$build" -DVO_FUZZ=ON -DBUILD_TESTING=OFF \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"$(nproc)" --target "${targets[@]/#/fuzz_}"
bash "$root/scripts/make-fuzz-seeds.sh" "$build/seeds" >/dev/null

# Leaks are not checked: Qt keeps plugin and codec state for the life of the
# process, which LeakSanitizer would report for the first input of each kind.
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=0}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
# Damaged pictures make Qt's readers warn on every input; the logs would be
# nothing else.
export QT_LOGGING_RULES='qt.gui.imageio*=false'
mkdir -p "$build/crashes" "$build/logs"
pids=()
# The timeout is generous: under nice on a busy machine a one-second input
# can take twenty; a real hang still shows.
for t in "${targets[@]}"; do
  mkdir -p "$build/corpus/$t"
  nice -n 10 "$build/bin/fuzz_$t" "$build/corpus/$t" "$build/seeds/$t" \
    -max_total_time="$seconds" -max_len=16384 -timeout=60 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$build/crashes/$t-" >"$build/logs/$t.log" 2>&1 &
  pids+=($!)
done
status=0
for i in "${!targets[@]}"; do
  t=${targets[$i]}
  if wait "${pids[$i]}"; then result=ok; else result=CRASHED; status=1; fi
  rm -rf "${TMPDIR:-/tmp}/vo-fuzz-${pids[$i]}" # the target's scratch files (nice execs it, same pid)
  runs=$(grep -o 'stat::number_of_executed_units: [0-9]*' "$build/logs/$t.log" | grep -o '[0-9]*$' || echo '?')
  echo "$t: $result, $runs executions in ${seconds}s (log: build-fuzz/logs/$t.log)"
done
exit $status
