#!/usr/bin/env bash
# Footprint on the device: stripped size of the editor library and the four
# platform libraries, and the resident memory of vo-viewer with the editor open
# on a 20-megapixel photo on a 240x320 screen, split by what the pages hold.
#   scripts/device-footprint.sh [BUILD_DIR] [EMULATOR...]
# e.g. scripts/device-footprint.sh build-arm64 qemu-aarch64-static -L /
# Under qemu the resident figure is the emulator's: guest pages plus qemu
# itself and its translated code.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
shift || true
emulator=("$@")
settle=${SETTLE:-8}   # seconds for the editor to show its preview

strip_tool=strip
case "$(readelf -h "$build/lib/libvoimageeditor.so.1" | grep Machine:)" in
  *AArch64*) strip_tool=aarch64-linux-gnu-strip ;;
  *ARM*) strip_tool=arm-linux-gnueabihf-strip ;;
esac
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
total=0
for lib in voimageeditor votoolkit voimgsvc voimageengine voutility; do
  "$strip_tool" -o "$tmp/$lib.so" "$build/lib/lib$lib.so.1"
  size=$(stat -c %s "$tmp/$lib.so")
  total=$((total + size))
  printf '%-16s %8d bytes\n' "lib$lib" "$size"
done
printf '%-16s %8d bytes (%d KiB)\n' total "$total" $((total / 1024))

photo="$tmp/Kleiber.jpg"
cp /usr/share/backgrounds/Kleiber_by_Lukas_Baubkus.jpg "$photo"
chmod u+w "$photo"
# A long wait as the only key keeps the editor open on its preview.
QT_QPA_PLATFORM=offscreen setsid "${emulator[@]}" "$build/bin/vo-viewer" --edit --screen 240x320 \
  --keys "wait:600000" "$photo" >"$tmp/viewer.log" 2>&1 &
pid=$!
sleep "$settle"
# The emulator (or the viewer itself) is the process holding the pages.
grep -E '^(VmRSS|VmHWM|RssAnon|RssFile)' "/proc/$pid/status"
# Resident kB by what a mapping holds.
awk '
  /^[0-9a-f]+-[0-9a-f]+ / { name = $6; for (i = 7; i <= NF; ++i) name = name " " $i
    kind = "other libraries and files"
    if (name == "" ) kind = "anonymous (heap buffers, thread stacks)"
    else if (name == "[heap]") kind = "[heap]"
    else if (name ~ /^\[/) kind = "stack, vdso and the like"
    else if (name ~ /libvo[a-z]+\.so/) kind = "the editor and platform libraries"
    else if (name ~ /plugins\//) kind = "Qt plugins"
    else if (name ~ /libQt6/) kind = "Qt libraries"
    else if (name ~ /libicu/) kind = "ICU (libicudata and friends)"
    else if (name ~ /\.(ttf|otf|pcf|pfb)|fontconfig/) kind = "fonts and font cache"
    else if (name ~ /qemu/) kind = "the emulator"
    next }
  /^Rss:/ { rss[kind] += $2 }
  END { for (k in rss) printf "%8d kB  %s\n", rss[k], k }' "/proc/$pid/smaps" | sort -rn
kill -- -"$pid" 2>/dev/null || kill "$pid"
wait "$pid" 2>/dev/null || true
