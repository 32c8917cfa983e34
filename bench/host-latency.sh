#!/usr/bin/env bash
# What the person waits for, measured through the demo host: key press to the
# editor's first paint with the preview ("open"), and, after one quarter turn,
# key press on Save to the save screen gone with the file written ("save"),
# read off the timestamps vo-viewer --trace logs. Beside them the engine's
# same save (vo-bench save IN OUT --rotate 90) in the same loop, and the
# host's resident memory while the editor sits idle on the picture.
#
#   bash bench/host-latency.sh          # RUNS=3 by default
#   RUNS=5 PHOTOS="kleiber20" bash bench/host-latency.sh
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build"
RUNS=${RUNS:-3}
PHOTOS=${PHOTOS:-"kleiber20 elephants18 elephants18o6"}
viewer="$build/bin/vo-viewer"
vobench="$build/bin/vo-bench"
for tool in "$viewer" "$vobench" exiftool; do
  command -v "$tool" >/dev/null || { echo "host-latency: $tool is missing (build first)" >&2; exit 1; }
done
results="$build/bench-results"
mkdir -p "$results" "$build/bench-data"
work=$(mktemp -d "$results/host.XXXXXX")
trap 'rm -rf "$work"' EXIT

photo_path() {
  case "$1" in
    kleiber20) echo /usr/share/backgrounds/Kleiber_by_Lukas_Baubkus.jpg ;;
    elephants18) echo /usr/share/backgrounds/mate/abstract/Elephants_5640x3172.jpg ;;
    elephants18o6)
      local p="$build/bench-data/elephants-orientation6.jpg"
      if [ ! -s "$p" ]; then
        cp /usr/share/backgrounds/mate/abstract/Elephants_5640x3172.jpg "$p.tmp.jpg"
        exiftool -q -overwrite_original -Orientation#=6 "$p.tmp.jpg"
        mv "$p.tmp.jpg" "$p"
      fi
      echo "$p" ;;
    *) echo "host-latency: unknown photo $1" >&2; exit 1 ;;
  esac
}

# Milliseconds between the first line matching $2 and the first line
# matching $3 after it, in trace $1 (for "save": the later of two events).
between() {
  awk -v from="$2" -v to="$3" -v also="${4:-}" '
    t0 == "" && $0 ~ from { t0 = $1; next }
    t0 != "" && t1 == "" && $0 ~ to { t1 = $1 }
    t0 != "" && also != "" && t2 == "" && $0 ~ also { t2 = $1 }
    END {
      if (t0 == "" || t1 == "" || (also != "" && t2 == "")) { print "NA"; exit }
      end = (also != "" && t2 > t1) ? t2 : t1
      printf "%.0f\n", end - t0
    }' "$1"
}

median() { sort -n | awk '{ v[NR] = $1 } END { if (!NR) { print "NA"; exit } print NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

# Open the editor (left soft key in the viewer), wait, turn right (Up), go to
# the save screen (right soft key), save over (left soft key), leave.
keys="wait:800 Context1 wait:4000 Up Context2 wait:1500 Context1 wait:4000 Context2 wait:800 Context2"

summary="$results/host-latency-$(date +%Y%m%d-%H%M%S).txt"
{
  echo "host latency — $(date '+%Y-%m-%d %H:%M'), $(nproc) cores, RUNS=$RUNS, load before $(cut -d' ' -f1-3 /proc/loadavg)"
  printf '%-14s %10s %10s %12s %16s %14s\n' photo "open ms" "save ms" "engine ms" "save/engine" "idle RSS MB"
  for name in $PHOTOS; do
    src=$(photo_path "$name")
    : >"$work/open"; : >"$work/save"; : >"$work/engine"; : >"$work/rss"
    for ((i = 1; i <= RUNS; i++)); do
      # The engine's same save, as one process.
      t0=$EPOCHREALTIME
      "$vobench" save "$src" "$work/engine.jpg" --rotate 90
      t1=$EPOCHREALTIME
      awk -v a="$t0" -v b="$t1" 'BEGIN { printf "%.0f\n", (b - a) * 1000 }' >>"$work/engine"

      cp "$src" "$work/photo.jpg"
      trace="$work/trace-$name-$i.log"
      QT_QPA_PLATFORM=offscreen "$viewer" --screen 240x320 --trace "$trace" --keys "$keys" --quit-when-closed \
        "$work/photo.jpg" >/dev/null 2>&1 &
      pid=$!
      # Resident memory with the editor idle on the picture: a second after
      # its first paint.
      rss=NA
      for ((w = 0; w < 200; w++)); do
        if grep -q 'painted ImgImplMainFrame' "$trace" 2>/dev/null; then
          sleep 1
          rss=$(awk '/^VmRSS/ { printf "%.1f", $2 / 1024 }' "/proc/$pid/status" 2>/dev/null || echo NA)
          break
        fi
        sleep 0.1
      done
      wait "$pid" || echo "host-latency: vo-viewer failed on $name (run $i)" >&2
      echo "$rss" >>"$work/rss"
      between "$trace" ' key Context1$' 'painted ImgImplMainFrame' >>"$work/open"
      # The second Context1 is Save; saved = save screen gone and file written.
      awk '/ key Context1$/ { n++ } n >= 2' "$trace" >"$trace.save"
      between "$trace.save" ' key Context1$' 'hidden ImgSvcSaveMgr' ' changed$' >>"$work/save"
      cp "$trace" "$results/" 2>/dev/null || true
    done
    open=$(median <"$work/open"); save=$(median <"$work/save"); engine=$(median <"$work/engine"); rss=$(median <"$work/rss")
    ratio=$(awk -v s="$save" -v e="$engine" 'BEGIN { if (s == "NA" || e == 0) print "NA"; else printf "%.2f", s / e }')
    printf '%-14s %10s %10s %12s %16s %14s\n' "$name" "$open" "$save" "$engine" "$ratio" "$rss"
    echo "  runs: open $(tr '\n' ' ' <"$work/open")| save $(tr '\n' ' ' <"$work/save")| engine $(tr '\n' ' ' <"$work/engine")| idle RSS $(tr '\n' ' ' <"$work/rss")"
  done
  echo "load after $(cut -d' ' -f1-3 /proc/loadavg)"
} | tee "$summary"
echo "summary: $summary"
