#!/usr/bin/env bash
# Times the editor's image jobs (through vo-bench and vo-bench-preview) side
# by side with common command-line tools doing the same work, on a real 20-MP
# baseline photo, a real 17.9-MP progressive one (and a copy of it tagged
# EXIF orientation 6) and a synthetic 12-MP one, and prints medians, ratios,
# peak memory and the 50 % resize's PSNR against one reference resize.
#
#   bash bench/run-bench.sh            # RUNS=5 by default
#   RUNS=9 bash bench/run-bench.sh
#   JOBS="preview rotate90" INPUTS="synth12" bash bench/run-bench.sh
#
# Every tool runs as its own process under GNU time (wall, user, sys, peak
# RSS). Within each iteration the tools of a job run in a rotating order, so
# drift in machine load spreads over all of them instead of hitting one.
# One untimed warm-up of each command fills the page cache first.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build"
data="$build/bench-data"
results="$build/bench-results"
RUNS=${RUNS:-5}
JOBS=${JOBS:-"preview rotate90 crop cropmcu resize chain"}
INPUTS=${INPUTS:-"kleiber20 elephants18 elephants18o6 synth12"}

bash "$root/scripts/install-deps.sh"

vobench="$build/bin/vo-bench"
vopreview="$build/bin/vo-bench-preview"
# REBUILD=1 also brings the benchmark programs and the libraries up to date.
if [ ! -x "$vobench" ] || [ ! -x "$vopreview" ] || [ "${REBUILD:-0}" = 1 ]; then
  if [ ! -f "$build/CMakeCache.txt" ]; then
    cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
  fi
  cmake --build "$build" --target vo-bench vo-bench-preview -j"$(nproc)" >/dev/null
fi

# The real ImageMagick, not a wrapper that may stand before it on PATH.
IM=/usr/bin/convert
IDENTIFY=/usr/bin/identify
GTIME=/usr/bin/time
COMPARE=/usr/bin/compare
for tool in "$IM" "$IDENTIFY" "$COMPARE" "$GTIME" jpegtran djpeg vips vipsthumbnail exiftool; do
  command -v "$tool" >/dev/null || { echo "run-bench: $tool is missing" >&2; exit 1; }
done

mkdir -p "$data" "$results"
stamp=$(date +%Y%m%d-%H%M%S)
csv="$results/raw-$stamp.csv"
summary="$results/summary-$stamp.txt"
work=$(mktemp -d "$results/work.XXXXXX")
trap 'rm -rf "$work"' EXIT

# ---- inputs -----------------------------------------------------------------
kleiber=/usr/share/backgrounds/Kleiber_by_Lukas_Baubkus.jpg
synth="$data/synth-4032x3024-q90-420.jpg"
if [ ! -s "$synth" ]; then
  # 4032 x 3024 with 4:2:0 is whole 16 x 16 blocks both ways, so a lossless
  # quarter turn is possible; fixed seed so every run times the same bytes.
  echo "making $synth"
  "$IM" -seed 7 -size 4032x3024 plasma:fractal -blur 0x2 -attenuate 0.6 +noise Gaussian \
    -quality 90 -sampling-factor 2x2 "$synth.tmp.jpg"
  mv "$synth.tmp.jpg" "$synth"
fi

# A real progressive photo (quality 100, 4:2:2, 16 MB), and a copy of it that
# says "turn right to show": the editor decodes it turned, at no extra cost.
elephants=/usr/share/backgrounds/mate/abstract/Elephants_5640x3172.jpg
elephants6="$data/elephants-orientation6.jpg"
if [ ! -s "$elephants6" ]; then
  cp "$elephants" "$elephants6.tmp.jpg"
  exiftool -q -overwrite_original -Orientation#=6 "$elephants6.tmp.jpg"
  mv "$elephants6.tmp.jpg" "$elephants6"
fi

input_path() {
  case "$1" in
    kleiber20) echo "$kleiber" ;;
    elephants18) echo "$elephants" ;;
    elephants18o6) echo "$elephants6" ;;
    synth12) echo "$synth" ;;
    *) echo "run-bench: unknown input $1" >&2; exit 1 ;;
  esac
}

# ---- measuring --------------------------------------------------------------
echo "input,job,tool,run,wall_s,user_s,sys_s,maxrss_kb,status" >"$csv"

# measure INPUT JOB TOOL RUN CMD...: one timed process, one CSV row. RUN 0 is
# the warm-up and is not recorded.
measure() {
  local input=$1 job=$2 tool=$3 run=$4
  shift 4
  local tfile="$work/time.txt" status=0 t0 t1
  # GNU time counts wall time in hundredths; the shell's clock is finer. Both
  # include GNU time's own start, the same small constant for every tool.
  t0=$EPOCHREALTIME
  "$GTIME" -o "$tfile" -f '%U %S %M' "$@" >/dev/null 2>"$work/stderr.txt" || status=$?
  t1=$EPOCHREALTIME
  if [ "$status" -ne 0 ]; then
    echo "  FAILED ($status): $input $job $tool: $(tail -n 3 "$work/stderr.txt" | tr '\n' ' ')" >&2
  fi
  if [ "$run" -gt 0 ]; then
    # GNU time prefixes a note when the command fails; the figures are last.
    read -r user sys rss < <(tail -n 1 "$tfile")
    wall=$(awk -v a="$t0" -v b="$t1" 'BEGIN { printf "%.4f", b - a }')
    echo "$input,$job,$tool,$run,$wall,$user,$sys,$rss,$status" >>"$csv"
  fi
}

# Commands are declared per input and job as "tool<TAB>shell words" lines, so
# that the loop below can rotate their order. Outputs go to the work folder.
declare -A CMDS
declare -A INFO

describe_input() {
  local name=$1 path
  path=$(input_path "$name")
  local w h q sf il
  read -r w h q sf il < <("$IDENTIFY" -format '%w %h %Q %[jpeg:sampling-factor] %[interlace]\n' "$path")
  sf=${sf%%,*} # luma factor, e.g. 2x1 for 4:2:2
  INFO[$name.w]=$w
  INFO[$name.h]=$h
  INFO[$name.q]=$q
  INFO[$name.sf]=$sf
  INFO[$name.orientation]=$(exiftool -s3 -n -Orientation "$path" 2>/dev/null || true)
  [ -n "${INFO[$name.orientation]}" ] || INFO[$name.orientation]=1
  if jpegtran -perfect -rotate 90 -outfile /dev/null "$path" 2>/dev/null; then
    INFO[$name.rot_perfect]=yes
  else
    INFO[$name.rot_perfect]=no
  fi
  # Same quality as the input and chroma subsampled, as the editor's save
  # keeps them. vips can only subsample 4:2:0 (a little less work than 4:2:2).
  # A progressive source is saved progressive, by the editor and its peers.
  local vq="Q=$q" im="-quality $q -sampling-factor $sf"
  [ "$sf" != "1x1" ] && vq="$vq,subsample-mode=on"
  if [ "$il" = JPEG ]; then
    vq="$vq,interlace"
    im="$im -interlace JPEG"
  fi
  INFO[$name.progressive]=$([ "$il" = JPEG ] && echo yes || echo no)
  INFO[$name.vips]="$vq"
  INFO[$name.im]="$im"
}

build_commands() {
  local name=$1 path w h q cw ch cx cy
  path=$(input_path "$name")
  w=${INFO[$name.w]}; h=${INFO[$name.h]}; q=${INFO[$name.q]}
  local vq=${INFO[$name.vips]} im=${INFO[$name.im]} o="$work/$name"
  # Centre half, as vo-bench computes it.
  cw=$((w / 2)); ch=$((h / 2)); cx=$((w / 4)); cy=$((h / 4))
  # The chain: after a quarter turn the picture is h x w.
  local rw=$h rh=$w
  local kw=$((rw / 2)) kh=$((rh / 2)) kx=$((rw / 4)) ky=$((rh / 4))

  CMDS[$name.preview]="vo-bench	$vopreview $path $o-vo-preview.jpg
vipsthumbnail	vipsthumbnail $path -s 480x640 -o '$o-vt-preview.jpg[Q=92]'
convert	$IM $path -resize 480x640 -quality 92 $o-im-preview.jpg
convert+hint	$IM -define jpeg:size=960x1280 $path -resize 480x640 -quality 92 $o-imh-preview.jpg
djpeg-1/8	djpeg -scale 1/8 -outfile /dev/null $path
cp	cp $path $o-cp.jpg"

  # A file tagged orientation 6 is shown turned right already: the editor's
  # quarter turn of what it shows is a half turn of the stored pixels, and
  # that is what the peers are given (ImageMagick turns it upright itself).
  local turn=90 imturn="-rotate 90"
  if [ "${INFO[$name.orientation]}" = 6 ]; then
    turn=180
    imturn="-auto-orient -rotate 90"
  fi
  CMDS[$name.rotate90]="vo-bench	$vobench save $path $o-vo-rot.jpg --rotate 90
jpegtran	jpegtran -copy all -rotate $turn -outfile $o-jt-rot.jpg $path
vips	vips rot $path '$o-vips-rot.jpg[$vq]' d$turn
convert	$IM $path $imturn $im $o-im-rot.jpg"

  CMDS[$name.crop]="vo-bench	$vobench save $path $o-vo-crop.jpg --crop-centre-half
jpegtran	jpegtran -copy all -crop ${cw}x${ch}+${cx}+${cy} -outfile $o-jt-crop.jpg $path
vips	vips crop $path '$o-vips-crop.jpg[$vq]' $cx $cy $cw $ch
convert	$IM $path -crop ${cw}x${ch}+${cx}+${cy} +repage $im $o-im-crop.jpg"

  # The centre half with its left and top moved down onto the 16-pixel MCU
  # grid: a cut both can make without decoding (jpegtran rounds an
  # unaligned offset down the same way itself).
  local mx=$((cx / 16 * 16)) my=$((cy / 16 * 16))
  CMDS[$name.cropmcu]="vo-bench	$vobench save $path $o-vo-cropmcu.jpg --crop ${cw}x${ch}+${mx}+${my}
jpegtran	jpegtran -copy all -crop ${cw}x${ch}+${mx}+${my} -outfile $o-jt-cropmcu.jpg $path"

  CMDS[$name.resize]="vo-bench	$vobench save $path $o-vo-resize.jpg --resize-half
vips	vips resize $path '$o-vips-resize.jpg[$vq]' 0.5
convert	$IM $path -resize 50% $im $o-im-resize.jpg"

  # vips's command line runs one operation per process; its own uncompressed
  # .v format between steps is the usual way to chain them.
  local v="$work/$name-chain"
  CMDS[$name.chain]="vo-bench	$vobench save $path $o-vo-chain.jpg --chain
vips	sh -c 'vips rot $path $v-1.v d90 && vips flip $v-1.v $v-2.v horizontal && vips crop $v-2.v $v-3.v $kx $ky $kw $kh && vips resize $v-3.v \"$o-vips-chain.jpg[$vq]\" 0.5; s=\$?; rm -f $v-1.v $v-2.v $v-3.v; exit \$s'
convert	$IM $path -rotate 90 -flop -crop ${kw}x${kh}+${kx}+${ky} +repage -resize 50% $im $o-im-chain.jpg"
}

# The jobs of an input: on a file with an EXIF turn only those whose peers
# can be given the same picture (the preview and the quarter turn).
jobs_for() {
  local job
  for job in $JOBS; do
    if [ "${INFO[$1.orientation]}" != 1 ] && [ "$job" != preview ] && [ "$job" != rotate90 ]; then
      continue
    fi
    printf '%s ' "$job"
  done
}

run_job() {
  local name=$1 job=$2 run=$3
  local lines=() n i k tool cmd
  mapfile -t lines <<<"${CMDS[$name.$job]}"
  n=${#lines[@]}
  for ((k = 0; k < n; k++)); do
    i=$(((k + run) % n))
    tool=${lines[$i]%%	*}
    cmd=${lines[$i]#*	}
    eval "measure $name $job $tool $run $cmd"
  done
}

for name in $INPUTS; do
  describe_input "$name"
  build_commands "$name"
done

# Which saves came out lossless: decoded pixels of the editor's quarter turn
# against jpegtran's perfect one.
lossless_note=""
for name in $INPUTS; do
  path=$(input_path "$name")
  if [ "${INFO[$name.rot_perfect]}" = yes ]; then
    "$vobench" save "$path" "$work/ll-vo.jpg" --rotate 90
    jpegtran -perfect -rotate 90 -outfile "$work/ll-jt.jpg" "$path"
    if cmp -s <(djpeg -pnm "$work/ll-vo.jpg") <(djpeg -pnm "$work/ll-jt.jpg"); then
      verdict="vo-bench output decodes identical to jpegtran -perfect (lossless)"
    else
      verdict="vo-bench output differs from jpegtran -perfect (re-encoded)"
    fi
  else
    verdict="jpegtran -perfect refuses (size not whole MCUs): no lossless quarter turn"
  fi
  lossless_note+="  $name ${INFO[$name.w]}x${INFO[$name.h]} q${INFO[$name.q]} ${INFO[$name.sf]}: rotate 90: $verdict"$'\n'
  # The MCU-aligned cut, as the cropmcu job makes it.
  w=${INFO[$name.w]}; h=${INFO[$name.h]}
  geometry="$((w / 2))x$((h / 2))+$((w / 4 / 16 * 16))+$((h / 4 / 16 * 16))"
  "$vobench" save "$path" "$work/ll-vo-cut.jpg" --crop "$geometry"
  jpegtran -crop "$geometry" -outfile "$work/ll-jt-cut.jpg" "$path"
  if cmp -s <(djpeg -pnm "$work/ll-vo-cut.jpg") <(djpeg -pnm "$work/ll-jt-cut.jpg"); then
    verdict="vo-bench output decodes identical to jpegtran -crop (lossless)"
  else
    verdict="vo-bench output differs from jpegtran -crop"
  fi
  lossless_note+="  $name: crop $geometry: $verdict"$'\n'
done

load_before=$(cut -d' ' -f1-3 /proc/loadavg)
echo "runs: $RUNS; inputs: $INPUTS; jobs: $JOBS"
for ((run = 0; run <= RUNS; run++)); do
  [ "$run" -eq 0 ] && echo "warm-up" || echo "iteration $run/$RUNS"
  for name in $INPUTS; do
    for job in $(jobs_for "$name"); do
      run_job "$name" "$job" "$run"
    done
  done
done

load_after=$(cut -d' ' -f1-3 /proc/loadavg)

# Resize quality: every tool's 50 % result (as saved, JPEG loss included)
# against one reference made the same way for all: ImageMagick's Lanczos
# resize of the full decode to that result's own size.
quality_note=""
for name in $INPUTS; do
  case " $(jobs_for "$name") " in *" resize "*) ;; *) continue ;; esac
  path=$(input_path "$name")
  for out in "$work/$name-vo-resize.jpg" "$work/$name-vips-resize.jpg" "$work/$name-im-resize.jpg"; do
    [ -s "$out" ] || continue
    size=$("$IDENTIFY" -format '%wx%h' "$out")
    ref="$work/$name-ref-$size.png"
    [ -s "$ref" ] || "$IM" "$path" -filter Lanczos -resize "$size!" "$ref"
    psnr=$("$COMPARE" -metric PSNR "$ref" "$out" null: 2>&1 || true)
    tool=$(basename "$out" .jpg); tool=${tool#"$name-"}; tool=${tool%-resize}
    case $tool in vo) tool=vo-bench ;; im) tool=convert ;; esac
    quality_note+="$name,$tool,$size,$psnr"$'\n'
  done
done

# ---- summary ----------------------------------------------------------------
# Medians per input, job and tool; then vo-bench's ratio to each peer and the
# targets. Ratios are vo-bench / peer: below 1 means vo-bench is faster/smaller.
{
  echo "vo-bench against peers — $(date '+%Y-%m-%d %H:%M'), $(nproc) cores, $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ //'), RUNS=$RUNS"
  echo "commit $(git -C "$root" rev-parse --short HEAD 2>/dev/null || echo '?'); newest engine source $(find "$root/platform/engine" -name '*.cpp' -printf '%TY-%Tm-%Td %TH:%TM\n' | sort | tail -n 1); engine library built $(date -r "$build/lib/libvoimageengine.so" '+%Y-%m-%d %H:%M' 2>/dev/null || echo '?')"
  echo "load average (1, 5, 15 min) before: $load_before; after: $load_after"
  echo
  echo "lossless eligibility:"
  printf '%s' "$lossless_note"
  echo
  if [ -n "$quality_note" ]; then
    echo "resize 50 % quality: PSNR (dB) of the saved result against a Lanczos resize of the full decode, and median wall time:"
    printf '%s' "$quality_note" | while IFS=, read -r qn qt qs qp; do
      [ -n "$qn" ] || continue
      qw=$(awk -F, -v n="$qn" -v t="$qt" '$1 == n && $2 == "resize" && $3 == t { print $5 }' "$csv" | sort -n |
        awk '{ v[NR] = $1 } END { if (NR) printf "%.3f", NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }')
      printf '  %-14s %-9s %-10s PSNR %6.2f dB  wall %s s\n' "$qn" "$qt" "$qs" "$qp" "$qw"
    done
    echo
  fi
  awk -F, -v perfect="$(for n in $INPUTS; do printf '%s=%s ' "$n" "${INFO[$n.rot_perfect]}"; done)" '
    # Sorts the values of key into s[1..n]; returns n.
    function sorted(key, s,    n, i, j, t) {
      n = split(vals[key], s, " ")
      for (i = 2; i <= n; i++) { t = s[i]; for (j = i - 1; j >= 1 && s[j] + 0 > t + 0; j--) s[j + 1] = s[j]; s[j + 1] = t }
      return n
    }
    function median(key,    n, s) {
      n = sorted(key, s)
      return n % 2 ? s[(n + 1) / 2] : (s[n / 2] + s[n / 2 + 1]) / 2
    }
    function lowest(key,    s) { sorted(key, s); return s[1] }
    function highest(key,    n, s) { n = sorted(key, s); return s[n] }
    NR == 1 { next }
    {
      g = $1 SUBSEP $2 SUBSEP $3
      if (!(g in seen)) { seen[g] = 1; order[++ng] = g }
      vals[g, "w"] = vals[g, "w"] " " $5
      vals[g, "c"] = vals[g, "c"] " " ($6 + $7)
      vals[g, "m"] = vals[g, "m"] " " $8
      if ($9 != 0) fails[g]++
    }
    END {
      split(perfect, p, " "); for (i in p) { split(p[i], kv, "="); ok[kv[1]] = kv[2] }
      for (i = 1; i <= ng; i++) {
        g = order[i]; split(g, k, SUBSEP)
        W[g] = median(g SUBSEP "w"); C[g] = median(g SUBSEP "c"); M[g] = median(g SUBSEP "m")
        L[g] = lowest(g SUBSEP "w"); H[g] = highest(g SUBSEP "w")
      }
      printf "%-14s %-9s %-13s %9s %15s %7s %8s %10s %10s %s\n", "input", "job", "tool", "wall s", "(min-max)", "cpu s", "RSS MB", "vo/peer t", "vo/peer m", ""
      for (i = 1; i <= ng; i++) {
        g = order[i]; split(g, k, SUBSEP); vo = k[1] SUBSEP k[2] SUBSEP "vo-bench"
        rt = (k[3] == "vo-bench" || W[g] == 0) ? "" : sprintf("%.2f", W[vo] / W[g])
        rm = (k[3] == "vo-bench" || M[g] == 0) ? "" : sprintf("%.2f", M[vo] / M[g])
        printf "%-14s %-9s %-13s %9.3f %15s %7.2f %8.1f %10s %10s %s\n", k[1], k[2], k[3], W[g], sprintf("(%.3f-%.3f)", L[g], H[g]), C[g], M[g] / 1024, rt, rm, (g in fails) ? "FAILED x" fails[g] : ""
      }
      print ""
      print "targets (vo-bench median wall / limit; RSS against vips on the same job):"
      for (i = 1; i <= ng; i++) {
        g = order[i]; split(g, k, SUBSEP)
        if (k[3] != "vo-bench") continue
        in_ = k[1]; job = k[2]; vo = g
        if (job == "preview") {
          base = W[in_ SUBSEP job SUBSEP "djpeg-1/8"] + W[in_ SUBSEP job SUBSEP "cp"]
          lim = 1.5 * base
          printf "  %-14s %-9s time %.3f s vs 1.5 x (djpeg 1/8 + cp) = %.3f s: %.2fx of limit %s\n", in_, job, W[vo], lim, W[vo] / lim, W[vo] <= lim ? "MET" : "MISSED"
          vt = in_ SUBSEP job SUBSEP "vipsthumbnail"
          printf "  %-14s %-9s RSS  %.1f MB vs vipsthumbnail %.1f MB: %.2fx %s\n", in_, job, M[vo] / 1024, M[vt] / 1024, M[vo] / M[vt], M[vo] <= M[vt] ? "MET" : "MISSED"
          continue
        }
        if (job == "cropmcu") {
          jt = in_ SUBSEP job SUBSEP "jpegtran"
          printf "  %-14s %-9s time %.3f s vs jpegtran -crop %.3f s (lossless cut): %.2fx %s\n", in_, job, W[vo], W[jt], W[vo] / W[jt], W[vo] <= 0.8 * W[jt] ? "MET (<= 0.8)" : "MISSED (> 0.8)"
          continue
        }
        if (job == "rotate90" && ok[in_] == "yes") {
          jt = in_ SUBSEP job SUBSEP "jpegtran"
          printf "  %-14s %-9s time %.3f s vs jpegtran %.3f s (lossless job): %.2fx %s\n", in_, job, W[vo], W[jt], W[vo] / W[jt], W[vo] <= W[jt] ? "MET" : "MISSED"
          continue
        }
        vp = in_ SUBSEP job SUBSEP "vips"
        printf "  %-14s %-9s time %.3f s vs vips %.3f s (lossy job): %.2fx %s\n", in_, job, W[vo], W[vp], W[vo] / W[vp], W[vo] <= W[vp] ? "MET" : "MISSED"
        printf "  %-14s %-9s RSS  %.1f MB vs vips %.1f MB: %.2fx %s\n", in_, job, M[vo] / 1024, M[vp] / 1024, M[vo] / M[vp], M[vo] <= M[vp] ? "MET" : "MISSED"
      }
    }' "$csv"
  # Where the time and memory of each save go, step by step (one untimed
  # replay each; a profiling aid, not part of the figures above).
  echo
  echo "vo-bench phases (one replay of each save, engine steps in the runner's order):"
  for name in $INPUTS; do
    for job in $(jobs_for "$name"); do
      case $job in
        rotate90) opt=(--rotate 90) ;;
        crop) opt=(--crop-centre-half) ;;
        cropmcu) continue ;;
        resize) opt=(--resize-half) ;;
        chain) opt=(--chain) ;;
        *) continue ;;
      esac
      echo "$name $job:"
      "$vobench" phases "$(input_path "$name")" "$work/phases.jpg" "${opt[@]}" || echo "  (replay failed)"
    done
  done
} | tee "$summary"

echo
echo "raw: $csv"
echo "summary: $summary"
