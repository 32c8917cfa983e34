#!/usr/bin/env bash
# Makes a target root (sysroot) for a cross build from Debian's own packages:
#   scripts/target-sysroot.sh ARCH DIR PACKAGE...
# apt resolves and downloads the packages and their dependencies for ARCH alone,
# with a state of its own (DIR.apt/), and dpkg-deb unpacks them into DIR. The
# build machine's dpkg never learns ARCH, and the sysroot does not depend on the
# updates the build machine has installed: multiarch needs the two to carry the
# same versions of every shared package, which fails whenever the mirror's
# security index for ARCH cannot be read. Quick when DIR is complete.
set -euo pipefail

arch=${1:?usage: $0 ARCH DIR PACKAGE...}
dir=$(realpath -m "${2:?usage: $0 ARCH DIR PACKAGE...}")
shift 2
codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
mirror=${DEBIAN_MIRROR:-http://deb.debian.org/debian}
keyring=/usr/share/keyrings/debian-archive-keyring.gpg
want="$arch $codename $mirror $*"
stamp="$dir/.target-sysroot"
if [ -f "$stamp" ] && [ "$(head -n 1 "$stamp")" = "$want" ]; then
  exit 0
fi

state="$dir.apt"
mkdir -p "$state/lists/partial" "$state/archives/partial" "$state/sources.list.d"
: >"$state/status"   # nothing installed: apt resolves every dependency
apt_opts=(
  -o "APT::Architecture=$arch" -o "APT::Architectures::=$arch"
  -o "Dir::State=$state" -o "Dir::State::Lists=$state/lists" -o "Dir::State::status=$state/status"
  -o "Dir::Cache=$state" -o "Dir::Cache::Archives=$state/archives"
  -o "Dir::Etc::SourceList=$state/sources.list" -o "Dir::Etc::SourceParts=$state/sources.list.d"
  -o Debug::NoLocking=1
)
sources() {
  for suite in "$@"; do
    echo "deb [arch=$arch signed-by=$keyring] $mirror $suite main"
  done >"$state/sources.list"
}
# The point-release updates when their index reads cleanly, the release alone
# otherwise. The security suite is left out: the sysroot only builds and runs
# the tests, and its armhf index is the one the mirror has served broken.
sources "$codename" "$codename-updates"
if ! apt-get "${apt_opts[@]}" -qq update; then
  echo "target-sysroot: $codename-updates for $arch unreadable, using $codename alone" >&2
  sources "$codename"
  apt-get "${apt_opts[@]}" -qq update
fi

# The packages apt would install into an empty system, as NAME VERSION ARCH.
mapfile -t debs < <(apt-get "${apt_opts[@]}" -s install --no-install-recommends "$@" |
  sed -n 's/^Inst \([^ ]*\) (\([^ ]*\) .*\[\([^]]*\)\]).*$/\1 \2 \3/p')
if [ ${#debs[@]} -eq 0 ]; then
  echo "target-sysroot: apt found nothing to install for: $*" >&2
  exit 1
fi
echo "target-sysroot: ${#debs[@]} $arch packages into $dir"
apt-get "${apt_opts[@]}" -qq -d -y install --no-install-recommends "$@" >/dev/null

rm -rf "$dir"
mkdir -p "$dir"
for deb in "${debs[@]}"; do
  read -r name version deb_arch <<<"$deb"
  # apt writes an epoch's colon as %3a in the file name.
  dpkg-deb -x "$state/archives/${name}_${version//:/%3a}_${deb_arch}.deb" "$dir"
done

# Links such as usr/lib/<triplet>/libz.so -> /lib/<triplet>/libz.so.1 name the
# target's root; made relative they resolve inside the sysroot, for the linker
# and for qemu alike.
find "$dir" -type l -lname '/*' -print0 | while IFS= read -r -d '' link; do
  ln -sfn "$(realpath -s -m --relative-to="$(dirname "$link")" "$dir$(readlink "$link")")" "$link"
done

printf '%s\n' "$want" "${debs[@]}" >"$stamp"
