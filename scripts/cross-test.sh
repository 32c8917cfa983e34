#!/usr/bin/env bash
# Cross-builds the tree for a handset processor (arm64 or armhf) into build-ARCH/
# and runs the whole test suite under qemu-user. Installs what is missing first.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

arch=${1:-}
case "$arch" in
  arm64) triplet=aarch64-linux-gnu qemu=qemu-aarch64-static ;;
  armhf) triplet=arm-linux-gnueabihf qemu=qemu-arm-static ;;
  *) echo "usage: $0 arm64|armhf" >&2; exit 2 ;;
esac

# Packages of the target's architecture, one a line; a new library the tree
# links to goes here (its host tools, if any, go in HOST_PACKAGES).
TARGET_PACKAGES=(
  libc6-dev
  qt6-base-dev
  libqt6test6
  qt6-qpa-plugins
  libturbojpeg0-dev
  libjpeg62-turbo-dev
  libexiv2-dev
  libgif-dev
  libpng-dev
  libwebp-dev
  libheif-dev
)
# Host packages: the cross compiler, the emulator, Qt's host tools (moc, rcc, uic).
HOST_PACKAGES=(
  "crossbuild-essential-$arch"
  qemu-user-static
  qt6-base-dev
  qt6-base-dev-tools
)

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
start=$SECONDS
if [ "$arch" = armhf ]; then
  # armhf gets a target root of its own instead of multiarch: multiarch wants
  # each shared library at the build machine's version, security updates
  # included, and the mirror's armhf security index is at times unreadable.
  # install-deps.sh adds the host side and the native set (the tests compare
  # against host tools: jpegtran, convert, exiftool, vips).
  sysroot="$root/build-sysroot/$arch"
  bash "$root/scripts/install-deps.sh" "${HOST_PACKAGES[@]}"
  bash "$root/scripts/target-sysroot.sh" "$arch" "$sysroot" "${TARGET_PACKAGES[@]}"
  # qemu looks for the fonts in the target root first, where only the
  # fallback font is: lend it the build machine's Noto fonts (Arabic,
  # Devanagari, CJK), which the text-fit test needs in every language.
  for dir in truetype/noto opentype/noto; do
    if [ -d "/usr/share/fonts/$dir" ]; then
      mkdir -p "$sysroot/usr/share/fonts/${dir%/*}"
      ln -sfn "/usr/share/fonts/$dir" "$sysroot/usr/share/fonts/$dir"
    fi
  done
  toolchain_args=(-DVO_SYSROOT="$sysroot")
else
  # dpkg must know the target's architecture before apt can find its packages;
  # install-deps.sh then installs what is missing, with the native set.
  added_arch=0
  if ! dpkg --print-foreign-architectures | grep -qx "$arch"; then
    $SUDO dpkg --add-architecture "$arch"
    added_arch=1
  fi
  target_packages=()
  for p in "${TARGET_PACKAGES[@]}"; do target_packages+=("$p:$arch"); done
  if ! bash "$root/scripts/install-deps.sh" "${HOST_PACKAGES[@]}" "${target_packages[@]}"; then
    # An architecture whose package lists cannot be read fails every later
    # apt-get update, the native one too: leave dpkg as it was.
    if [ "$added_arch" -eq 1 ] && ! dpkg-query -W -f='${Architecture}\n' | grep -qx "$arch"; then
      $SUDO dpkg --remove-architecture "$arch"
    fi
    echo "cross-test: the $arch packages could not be installed (see apt's messages above)" >&2
    exit 1
  fi
  toolchain_args=()
fi
echo "cross-test: packages checked or installed in $((SECONDS - start)) s"

build="$root/build-$arch"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchains/$triplet.cmake" "${toolchain_args[@]}" >/dev/null
start=$SECONDS
nice cmake --build "$build" -j"$(nproc)"
echo "cross-test: built in $((SECONDS - start)) s"

cd "$build"
export QT_QPA_PLATFORM=offscreen
# The emulator must use the target's own loader (/lib/ld-linux-*, from the
# multiarch libc6:ARCH or the sysroot). With QEMU_LD_PREFIX=/usr/<triplet> qemu
# takes the loader of the cross toolchain's libc instead, a different build
# than the libc.so.6 it then loads; the two share private state, and the first
# thread a program starts (QtTest's watchdog) spins for ever.
unset QEMU_LD_PREFIX
# Timeouts are scaled for emulation in tests/CMakeLists.txt.
echo "cross-test: every test runs under $("$qemu" --version | head -n 1)," \
  "except tst_install_consumer (left out of cross builds: it builds and runs a host on this machine)"
nice ctest --output-on-failure -j"$(nproc)"
