#!/usr/bin/env bash
# Refreshes translations/*.ts from the texts in the code: texts the code no
# longer uses are dropped, new ones are added. In English a new text gets its
# wording from the code (a resource key's comment, or the text itself); in
# the other languages it stays unfinished until a translator fills it in
# (Qt Linguist, or by hand).
#
#   bash scripts/update-translations.sh             # the files in translations/
#   bash scripts/update-translations.sh --into DIR  # copies in DIR, nothing filled
#
# LUPDATE names the Qt 6 lupdate to use (default: Qt 6's own, else PATH).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
lupdate=${LUPDATE:-/usr/lib/qt6/bin/lupdate}
[ -x "$lupdate" ] || lupdate=$(command -v lupdate)

dir=$root/translations
fill=1
if [ "${1:-}" = "--into" ]; then
  [ -n "${2:-}" ] || { echo "usage: $0 [--into DIR]" >&2; exit 2; }
  mkdir -p "$2"
  cp "$dir"/*.ts "$2"/
  dir=$2
  fill=0
fi

"$lupdate" -silent -locations none -no-obsolete -extensions cpp,h \
  "$root/imageeditor" "$root/platform" "$root/host" -ts "$dir"/*.ts

if [ "$fill" = 1 ]; then
  # A resource key (capitals, digits, underscores) reads as its comment.
  perl -0pi -e '
    s{(<message>\s*<source>([^<]*)</source>(?:\s*<comment>([^<]*)</comment>)?\s*)<translation type="unfinished">[^<]*</translation>}
     {my ($head, $source, $comment) = ($1, $2, $3);
      my $text = ($source =~ /^[A-Z][A-Z0-9]*_[A-Z0-9_]+$/ && defined $comment) ? $comment : $source;
      "$head<translation>$text</translation>"}ge
  ' "$dir"/*_en.ts
fi
