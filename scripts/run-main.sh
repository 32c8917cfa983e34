#!/usr/bin/env bash
# The main job: installs what is missing, builds, and runs the host on a
# sample photo. With a display the host opens there; without one it runs a
# short key script headless and saves a screenshot after each key.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/build.sh"

# Edit a copy: the editor writes the file it edits, and needs write access.
sample_dir="$root/build/sample"
mkdir -p "$sample_dir"
photo="$sample_dir/Kleiber.jpg"
if [ ! -f "$photo" ]; then
  cp /usr/share/backgrounds/Kleiber_by_Lukas_Baubkus.jpg "$photo"
  chmod u+w "$photo"
fi

viewer="$root/build/bin/vo-viewer"
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  echo "Keys: F1 = left soft key, F2 = right soft key, Return = select, arrows = five-way."
  exec "$viewer" --screen 240x320 "$photo"
fi

shots="$root/shots/main"
rm -rf "$shots"
# Open the editor, open Options, rotate 90 right, apply, save, then leave.
QT_QPA_PLATFORM=offscreen "$viewer" --edit --screen 240x320 --key-delay 600 --shots "$shots" \
  --keys "wait:1500 Context1 Down Select wait:500 Context2 wait:2500 Context1 wait:3000 Context2" \
  --quit-when-closed "$photo"
echo "Edited: $photo"
