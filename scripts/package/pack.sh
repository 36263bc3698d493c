#!/usr/bin/env bash
# Packs what package.sh has built. The same build gives the same packages, byte for byte, unless they are signed.
#   scripts/package/pack.sh STAGE OUT        STAGE is a folder for what is packed; both are made anew
set -eu
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
stage=$(realpath -m "$1")
out=$(realpath -m "$2")
cd "$root"
umask 022

version=$(sed -nE 's/^project\(VeltranoFrameWorkDLL VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
machine=$(uname -m)
. packaging/publisher
# All files in the packages have the time of the last commit, so that the same sources make the same packages.
epoch=$(git log -1 --format=%ct 2>/dev/null || date +%s)
export SOURCE_DATE_EPOCH=$epoch TZ=UTC LC_ALL=C.UTF-8

rm -rf "$stage" "$out"
mkdir -p "$stage" "$out"
. scripts/package/contents.sh
. scripts/package/windows.sh
. scripts/package/linux.sh

pack_symbols() {
  local name="VeltranoFrameWork-$version-symbols"
  echo "Packing $name.zip"
  fill packaging/symbols.txt.in | for_windows - >"$stage/$name/README.txt"
  zipped "$name"
}

pack_zip
pack_installer x64
pack_installer x86
pack_archive
pack_deb
pack_symbols
(cd "$out" && sha256sum -- * >"$stage/SHA256SUMS" && mv "$stage/SHA256SUMS" .)
echo "Writing the winget manifest"
python3 packaging/windows/make_winget_manifest.py "$version" "$downloads" "$(date -d "@$epoch" +%F)" "$out"
