#!/usr/bin/env bash
# Makes one small picture of every kind the editor opens and saves back
# (GIF still and animated, PNG of each bit depth and colour type, WebP lossy,
# lossless and animated, HEIF with EXIF), with the reference tools the tests
# read the results with: ImageMagick, cwebp/gif2webp, heif-enc, exiftool.
# Nothing is downloaded and nothing is committed. Usage: make-format-corpus.sh DIR
set -euo pipefail
out=${1:?usage: make-format-corpus.sh DIR}
mkdir -p "$out"
tmp=$(mktemp -d); trap 'rm -rf "$tmp"' EXIT

# Smooth colours and hard edges: quantisation and turns both show.
convert -size 64x48 gradient:'#2050c0-#e0a040' -fill '#30a030' -draw 'rectangle 6,5 25,20' "$tmp/base.png"

# GIF: a still one, and three frames of their own sizes, places, delays and
# disposals that loop for ever.
convert "$tmp/base.png" -colors 64 "$out/still.gif"
convert -dispose none -delay 10 "$tmp/base.png" -colors 64 \
  -dispose background -delay 20 -page +8+4 -size 20x10 xc:yellow \
  -dispose previous -delay 30 -page +30+20 -size 16x16 xc:green \
  -loop 0 "$out/anim.gif"

# PNG: 16-bit with alpha, 16-bit grey, palette, grey with alpha, and text
# and gamma chunks on an 8-bit one.
convert "$tmp/base.png" -alpha set -channel A -fx '0.25+0.75*i/w' +channel -depth 16 "PNG64:$out/rgba16.png"
convert "$tmp/base.png" -colorspace Gray -depth 16 "PNG:$out/grey16.png"
convert "$tmp/base.png" -colors 16 "PNG8:$out/palette.png"
convert "$tmp/base.png" -colorspace Gray -alpha set -channel A -fx 'i/w' +channel -depth 8 -define png:color-type=4 "PNG:$out/greyalpha.png"
convert "$tmp/base.png" -set comment 'kept text' -gamma 1 -define png:include-chunk=gama,text "PNG24:$out/text.png"
# An ICC profile on it too: the sRGB one of a picture Debian's
# mate-backgrounds brings (scripts/install-deps.sh installs it).
exiftool -b -ICC_Profile /usr/share/backgrounds/mate/desktop/Ubuntu-Mate-Cold-no-logo.png >"$tmp/srgb.icc"
exiftool -q -overwrite_original "-ICC_Profile<=$tmp/srgb.icc" "$out/text.png"

# WebP: lossy, lossless, and the animation made from the GIF.
cwebp -quiet -q 80 "$tmp/base.png" -o "$out/lossy.webp"
cwebp -quiet -lossless "$tmp/base.png" -o "$out/lossless.webp"
gif2webp -quiet "$out/anim.gif" -o "$out/anim.webp"

# HEIF from a JPEG with EXIF the save must carry.
convert "$tmp/base.png" -quality 90 "$tmp/base.jpg"
exiftool -q -overwrite_original -Make=Corpus -Model=Formats "$tmp/base.jpg"
heif-enc -q 80 "$tmp/base.jpg" -o "$out/photo.heic" >/dev/null
