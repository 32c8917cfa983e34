#!/usr/bin/env bash
# Makes the fuzzers' seed pictures, small and of every kind the editor
# meets, with the tools the tests use (ImageMagick, libjpeg-turbo's
# programs, exiftool): nothing is downloaded. Usage: make-fuzz-seeds.sh DIR
# writes DIR/open_picture, DIR/replay_commands, DIR/metadata and
# DIR/lossless_turn.
set -euo pipefail
out=${1:?usage: make-fuzz-seeds.sh DIR}
pic="$out/open_picture"; cmd="$out/replay_commands"; meta="$out/metadata"; turn="$out/lossless_turn"
mkdir -p "$pic" "$cmd" "$meta" "$turn"
tmp=$(mktemp -d); trap 'rm -rf "$tmp"' EXIT

# A smooth picture with edges, odd-sized so JPEG blocks are partial.
convert -size 37x23 gradient:'#2050c0-#e0a040' -fill '#30a030' -draw 'rectangle 5,4 14,12' "$tmp/photo.png"
convert "$tmp/photo.png" -quality 85 -sampling-factor 2x2 "$pic/baseline420.jpg"
convert "$tmp/photo.png" -quality 95 -sampling-factor 1x1 "$pic/baseline444.jpg"
convert "$tmp/photo.png" -quality 80 -sampling-factor 2x1 "$pic/baseline422.jpg"
convert "$tmp/photo.png" -interlace JPEG -quality 80 "$pic/progressive.jpg"
convert "$tmp/photo.png" -colorspace Gray -quality 80 "$pic/grey.jpg"
convert "$tmp/photo.png" -colorspace CMYK -quality 80 "$pic/cmyk.jpg"
convert "$tmp/photo.png" -quality 80 -define jpeg:restart-interval=1 "$pic/restart.jpg"
djpeg "$pic/baseline420.jpg" | cjpeg -arithmetic -quality 80 >"$pic/arithmetic.jpg"
cp "$pic/baseline420.jpg" "$pic/rotated6.jpg"
exiftool -q -overwrite_original -Orientation#=6 "$pic/rotated6.jpg"
cp "$tmp/photo.png" "$pic/photo.png"
convert "$tmp/photo.png" -alpha set -channel A -evaluate set 50% "$pic/alpha.png"
convert "$tmp/photo.png" -colors 16 "PNG8:$pic/palette.png"
convert "$tmp/photo.png" -interlace PNG "$pic/interlaced.png"
convert "$tmp/photo.png" -depth 16 "PNG48:$pic/deep.png"
convert "$tmp/photo.png" "$pic/photo.gif"
convert "$tmp/photo.png" "$pic/photo.bmp"
# Damaged files: cut short, empty.
head -c 300 "$pic/baseline420.jpg" >"$pic/truncated.jpg"
head -c 120 "$pic/photo.png" >"$pic/truncated.png"
: >"$pic/empty"
# GIF (still, animated), PNG of every depth, WebP (lossy, lossless,
# animated) and HEIF, whole and cut short.
bash "$(dirname "$0")/make-format-corpus.sh" "$tmp/formats"
cp "$tmp/formats"/* "$pic/"
for f in anim.gif anim.webp photo.heic; do head -c 200 "$tmp/formats/$f" >"$pic/truncated-$f"; done

# A minimal ICC profile: the 128-byte header (size 132, display class, RGB
# to XYZ, the 'acsp' signature) and an empty tag table.
{
  printf '\x00\x00\x00\x84' ; printf '\x00%.0s' {1..4}
  printf '\x02\x10\x00\x00mntrRGB XYZ '
  printf '\x00%.0s' {1..12}
  printf 'acsp'
  printf '\x00%.0s' {1..88}
  printf '\x00\x00\x00\x00'
} >"$tmp/tiny.icc"
convert "$tmp/photo.png" -resize 8x6 "$tmp/thumb.jpg"
cp "$pic/baseline420.jpg" "$meta/exif.jpg"
exiftool -q -overwrite_original -Make=VoSeed -Model=Keypad -Orientation#=3 \
  -DateTimeOriginal='2020:01:02 03:04:05' -GPSLatitude=51.5 -GPSLatitudeRef=N "$meta/exif.jpg"
cp "$meta/exif.jpg" "$meta/exif-thumb.jpg"
exiftool -q -overwrite_original "-ThumbnailImage<=$tmp/thumb.jpg" "$meta/exif-thumb.jpg"
cp "$pic/baseline420.jpg" "$meta/xmp-icc.jpg"
exiftool -q -overwrite_original -XMP-dc:Title=Harbour -Comment='a comment' "-ICC_Profile<=$tmp/tiny.icc" \
  "$meta/xmp-icc.jpg"
cp "$pic/grey.jpg" "$pic/cmyk.jpg" "$pic/rotated6.jpg" "$meta/"
# The metadata ones are pictures to open too.
cp "$meta"/*.jpg "$pic/"

# Lossless turns take exact transforms only (partial MCUs where they stay
# put); a flat 1280x1024 picture is large enough to be coded in two strips,
# and small enough to fuzz.
convert -size 32x16 gradient:'#2050c0-#e0a040' "$tmp/whole.png"
convert "$tmp/whole.png" -quality 85 -sampling-factor 2x2 "$turn/whole420.jpg"
convert "$tmp/whole.png" -quality 85 -sampling-factor 2x1 "$turn/whole422.jpg"
convert "$tmp/whole.png" -quality 90 -sampling-factor 1x1 "$turn/whole444.jpg"
convert "$tmp/whole.png" -colorspace Gray -quality 80 "$turn/whole-grey.jpg"
convert "$tmp/whole.png" -colorspace CMYK -quality 80 "$turn/whole-cmyk.jpg"
convert "$tmp/whole.png" -quality 80 -define jpeg:restart-interval=1 "$turn/whole-restart.jpg"
convert -size 40x24 gradient:"#2050c0-#e0a040" -quality 85 -sampling-factor 2x2 "$turn/partial420.jpg"
djpeg "$turn/whole420.jpg" | cjpeg -arithmetic -quality 80 >"$turn/whole-arithmetic.jpg"
cp "$turn/whole420.jpg" "$turn/whole-exif.jpg"
exiftool -q -overwrite_original -Make=VoSeed -Orientation#=6 "-ThumbnailImage<=$tmp/thumb.jpg" "$turn/whole-exif.jpg"
convert -size 1280x1024 xc:'#406080' -quality 10 -sampling-factor 2x2 "$turn/strips.jpg"

# Command lists, one command a few bytes: source and output picks, then
# (type, parameters) repeated; see fuzz_replay_commands.cpp.
put() { printf "$2" >"$cmd/$1"; }
put rotate       '\x00\x00\x00\x00\x01'
put mirror-crop  '\x01\x01\x01\x01\x02\x00\x03\x00\x04\x00\x0a\x00\x08'
put resize       '\x00\x00\x03\x01\x00\x20\x01\x00\x10'
put effects      '\x02\x02\x04\x00\x03\x04\x00\x06\x04\x80\x00\x09'
put overlay      '\x03\x01\x05\x01\x00\x02\x00\x03\x00\x08\x00\x06'
put chain        '\x00\x00\x00\x00\x01\x01\x00\x02\x00\x01\x00\x01\x00\x10\x00\x10\x03\x00\x07\x00\x05\x04\x00\x01'
echo "seeds in $out: $(ls "$pic" | wc -l) pictures, $(ls "$meta" | wc -l) with metadata, $(ls "$cmd" | wc -l) command lists, $(ls "$turn" | wc -l) to turn"
