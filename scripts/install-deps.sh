#!/usr/bin/env bash
# Installs what the project needs from Debian's packages. Idempotent: when every
# package is present it only checks and returns. Packages given as arguments
# are wanted too (scripts/cross-test.sh adds the target's).
set -euo pipefail

PACKAGES=(
  build-essential cmake pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins
  qt6-tools-dev qt6-l10n-tools
  libturbojpeg0-dev libjpeg62-turbo-dev libexiv2-dev
  libgif-dev libpng-dev libwebp-dev libheif-dev
  webp libheif-examples
  libjpeg-turbo-progs imagemagick libvips-tools libimage-exiftool-perl
  xvfb xauth fonts-dejavu-core
  # The scripts of the catalogues: Latin, Cyrillic, Arabic and Devanagari
  # (Noto core), Simplified Chinese (Noto CJK).
  fonts-noto-core fonts-noto-cjk
  lomiri-wallpapers-20.04 mate-backgrounds
  time
  inotify-tools
)
PACKAGES+=("$@")

missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
