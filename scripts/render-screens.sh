#!/usr/bin/env bash
# Renders every screen of the editor at 240x320 and 480x640 into docs/screens/,
# and the main view, the menu and a notice in Arabic and Chinese,
# driving the demo host with key scripts on a copy of a real photo. The wait
# dialog and the storage-full notice are up only while the work they announce
# blocks the host's key script, so those two come from the geometry test's
# rendering of the same widgets. Needs a build (scripts/build.sh).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
viewer="$root/build/bin/vo-viewer"
geometry="$root/build/bin/tst_imgsvc_geometry"
out="$root/docs/screens"
work=$(mktemp -d)
# The save screens name the folder: a fixed one keeps the pictures the same.
pics=/tmp/vo-screens/Pictures
trap 'rm -rf "$work" /tmp/vo-screens' EXIT
export QT_QPA_PLATFORM=offscreen
[ -x "$viewer" ] && [ -x "$geometry" ] || { echo "build first: bash scripts/build.sh" >&2; exit 1; }
mkdir -p "$out"

# Add Elements is offered up to 640x480: the sample is a photo of that size.
convert /usr/share/backgrounds/Kleiber_by_Lukas_Baubkus.jpg -resize 640x480 -quality 90 "$work/photo.jpg"

# The language of the runs: the system's unless set (the editor takes it from the locale).
locale_env=()

# keep SHOTDIR INDEX NAME SIZE: one shot, made small (a palette PNG).
keep() {
  convert "$1/$(printf %03d "$2").png" -strip +dither -colors 128 "PNG8:$out/$3-$4.png"
}

# run SIZE NAME KEYS [extra viewer args]: the host on a fresh copy of the photo.
run() {
  local size=$1 name=$2 keys=$3
  rm -rf "$work/$name" "$pics"
  mkdir -p "$pics"
  cp "$work/photo.jpg" "$pics/photo.jpg"
  # Makes Save as's offered name an existing one: the replace question.
  cp "$work/photo.jpg" "$pics/photo_edited.jpg"
  env "${locale_env[@]}" timeout 120 "$viewer" --edit --screen "$size" --key-delay 500 --shots "$work/$name" --keys "$keys" \
    --quit-when-closed "$pics/photo.jpg" >/dev/null 2>&1 || true
}

# busy SIZE NAME: another editor holds the photo: the notice, then OK closes the editor.
busy() {
  rm -rf "$work/$2"
  cp "$work/photo.jpg" "$work/busy.jpg"
  flock "$work/busy.jpg" sleep 6 &
  local holder=$!
  sleep 0.5
  env "${locale_env[@]}" timeout 60 "$viewer" --edit --screen "$1" --key-delay 800 --shots "$work/$2" --keys "Select" \
    --quit-when-closed "$work/busy.jpg" >/dev/null 2>&1 || true
  # Let the holder finish on its own before the next run needs the file.
  wait "$holder" || true
}

menu() { # Options, then the row $1 rows below the first, selected
  local k="Context1"
  for _ in $(seq 1 "$1"); do k="$k Down"; done
  echo "$k Select"
}

for size in 240x320 480x640; do
  # Main view, menu, a turn, the save screen, Save as, the replace question;
  # then No, Back, drop the edits (Select, Yes) and leave.
  run "$size" flow "Context1 Down Select Context2 wait:600 Context2 Select Context2 Context2 Select Select Context2"
  keep "$work/flow" 0 main "$size"
  keep "$work/flow" 2 options-menu "$size"
  keep "$work/flow" 3 rotate "$size"
  keep "$work/flow" 4 save "$size"
  keep "$work/flow" 5 save-as "$size"
  keep "$work/flow" 6 replace-question "$size"

  # Sub-editors, each left without confirming (the keys wait 2 s after that).
  run "$size" crop "$(menu 4) Right Context2 wait:2200 Context2"
  keep "$work/crop" 7 crop "$size"
  run "$size" resize "$(menu 5) Down Context2 wait:2200 Context2"
  keep "$work/resize" 8 resize "$size"
  run "$size" elements "$(menu 6) Select Left Context2 Context2 wait:2200 Context2"
  keep "$work/elements" 9 add-elements "$size"
  run "$size" style "$(menu 7) Down Down Context2 wait:2200 Context2"
  keep "$work/style" 10 style "$size"

  # Undo in the menu after a turn; then Clear takes the turn back.
  run "$size" undo "Up Context1 Down Down Down Down Down Down Down Down Context2 Clear Context2"
  keep "$work/undo" 10 options-undo "$size"
  # The style list's last rows, then the adjust screen (back twice to leave).
  run "$size" adjust "$(menu 7) Down Down Down Down Down Down Down Select Right Right Down Right Right Down Left Left Context2 Context2 wait:2200 Context2"
  keep "$work/adjust" 16 style-adjust-entry "$size"
  keep "$work/adjust" 25 adjust "$size"

  busy "$size" busy
  keep "$work/busy" 0 being-edited "$size"

  # Right to left and CJK: the main view, the menu and a notice in Arabic and
  # Chinese, the language taken from the locale as on a handset.
  for locale in ar_EG zh_CN; do
    lang=${locale%%_*}
    locale_env=(LANG="$locale.UTF-8" LC_ALL= LC_MESSAGES= LANGUAGE=)
    run "$size" "flow-$lang" "Context1 Context2 Context2"
    keep "$work/flow-$lang" 0 "main-$lang" "$size"
    keep "$work/flow-$lang" 1 "options-menu-$lang" "$size"
    busy "$size" "busy-$lang"
    keep "$work/busy-$lang" 0 "being-edited-$lang" "$size"
    locale_env=()
  done
done

# The wait dialog, the storage-full notice and the notice of a format that can not
# be saved over, as the geometry test lays them out.
VO_SCREENS_DIR="$work/geometry" "$geometry" >/dev/null
for size in 240x320 480x640; do
  convert "$work/geometry/$size-wait.png" -strip +dither -colors 128 "PNG8:$out/wait-$size.png"
  convert "$work/geometry/$size-storage-full.png" -strip +dither -colors 128 "PNG8:$out/storage-full-$size.png"
  convert "$work/geometry/$size-format-notice.png" -strip +dither -colors 128 "PNG8:$out/format-notice-$size.png"
done
ls "$out"
