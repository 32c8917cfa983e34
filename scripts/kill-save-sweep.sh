#!/usr/bin/env bash
# Kills the editor's whole process group with SIGKILL in the middle of a save
# over a 16 MB photo, many times, and checks that the photo is always the old
# one or the new one byte for byte, and that the next launch leaves nothing
# beside it and sweeps the killed editor's working files (its live marker in
# /tmp/.vo_imgeditor, "live_<pid>_*", goes last, after the files it lists).
#
#   scripts/kill-save-sweep.sh [RUNS]     (RUNS per mode, 50 by default;
#                                          MODES="change" runs only some modes)
#
# Modes:
#   random   kill at a random moment of a launch-rotate-save session
#   change   kill the instant the photo first changes on disk (inotify)
#   inplace  as "change", with a second hard link on the photo so that the
#            save is written in place behind a backup; the photo may be torn
#            at the kill, so it is judged after the next launch, which opens
#            another photo and must still have put the old bytes back
# Needs: a build in build/, ImageMagick's convert, inotifywait.
set -uo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
viewer="$root/build/bin/vo-viewer"
runs=${1:-50}
work=$(mktemp -d /tmp/vo-kill-sweep.XXXXXX)
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen

save_keys="wait:500 Up Context2 wait:300 Context1 wait:300 Context2"
pristine="$work/pristine.jpg"
# Noise barely compresses: 4600 x 4000 at quality 97 without subsampling is
# about 16 MB.
convert -size 4600x4000 xc:gray +noise Random -quality 97 -sampling-factor 1x1 "$pristine"
old=$(sha256sum <"$pristine" | cut -d' ' -f1)

dir="$work/pics"
mkdir -p "$dir"
photo="$dir/photo.jpg"

other_pristine="$work/other.jpg"
convert -size 64x48 xc:gray "$other_pristine"

reset_photo() {
  rm -rf "$dir"
  mkdir -p "$dir"
  cp "$pristine" "$photo"
  cp "$other_pristine" "$dir/other.jpg"
}

# One undisturbed save gives the new bytes and how long a session lasts.
reset_photo
start=$(date +%s%N)
"$viewer" --edit --key-delay 200 --keys "$save_keys" --quit-when-closed "$photo" >/dev/null 2>&1
session_ms=$(( ($(date +%s%N) - start) / 1000000 ))
new=$(sha256sum <"$photo" | cut -d' ' -f1)
if [ "$new" = "$old" ]; then
  echo "the undisturbed save did not change the photo" >&2
  exit 2
fi
echo "photo $(stat -c %s "$pristine") bytes, one session ${session_ms} ms"

judge() { # prints old, new or torn
  local h
  h=$(sha256sum <"$photo" | cut -d' ' -f1)
  if [ "$h" = "$old" ]; then echo old; elif [ "$h" = "$new" ]; then echo new; else echo torn; fi
}

relaunch() { # the next launch, on $1: recovery runs before anything is read
  "$viewer" --edit --keys "wait:300 Context2" --quit-when-closed "$1" >/dev/null 2>&1
}

failures=0
for mode in ${MODES:-random change inplace}; do
  declare -A count=([old]=0 [new]=0 [torn]=0 [left]=0 [healed]=0)
  for ((i = 1; i <= runs; i++)); do
    reset_photo
    [ "$mode" = inplace ] && ln "$photo" "$dir/second.jpg"
    watcher=""
    if [ "$mode" != random ]; then
      # The first event naming the photo itself: renamed over, or written.
      inotifywait -m -q -e modify,moved_to --format '%f' "$dir" >"$work/events" 2>/dev/null &
      watcher=$!
      sleep 0.2
    fi
    setsid "$viewer" --edit --key-delay 200 --keys "$save_keys" --quit-when-closed "$photo" >/dev/null 2>&1 &
    pid=$!
    if [ "$mode" = random ]; then
      sleep "$(awk -v r="$RANDOM" -v t="$session_ms" 'BEGIN { printf "%.3f", (r / 32767.0) * t / 1000.0 }')"
    else
      while kill -0 "$pid" 2>/dev/null && ! grep -qx 'photo.jpg' "$work/events"; do :; done
    fi
    kill -KILL -- "-$pid" 2>/dev/null
    wait "$pid" 2>/dev/null
    [ -n "$watcher" ] && { kill "$watcher" 2>/dev/null; wait "$watcher" 2>/dev/null; }
    at_kill=$(judge)
    # In place the next launch is on another photo: recovery goes by the
    # journal, not by the name opened.
    if [ "$mode" = inplace ]; then relaunch "$dir/other.jpg"; else relaunch "$photo"; fi
    after=$(judge)
    verdict=$after
    # A rename leaves the photo whole at every instant, so judge it at the
    # kill too; in place only the next launch makes it whole.
    if [ "$mode" != inplace ] && [ "$at_kill" = torn ]; then verdict=torn; fi
    count[$verdict]=$((count[$verdict] + 1))
    if [ "$at_kill" = torn ] && [ "$after" != torn ]; then count[healed]=$((count[healed] + 1)); fi
    left=$( (ls -A "$dir" | grep '\.vo-'; ls /tmp/.vo_imgeditor 2>/dev/null | grep "^live_${pid}_") | tr '\n' ' ')
    if [ -n "$left" ]; then
      count[left]=$((count[left] + 1))
      echo "$mode run $i: left after relaunch: $left" >&2
    fi
    if [ "$mode" = inplace ] && ! cmp -s "$photo" "$dir/second.jpg"; then count[torn]=$((count[torn] + 1)); fi
  done
  echo "$mode: $runs runs: old ${count[old]}, new ${count[new]}, torn ${count[torn]}, leftovers after relaunch ${count[left]} (torn at the kill and whole after relaunch: ${count[healed]})"
  failures=$((failures + count[torn] + count[left]))
  unset count
done
exit $((failures > 0))
