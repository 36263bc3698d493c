#!/usr/bin/env bash
# Builds Expat, pugixml, libpng, libjpeg-turbo (with its SIMD code) and the ciphers of Mbed TLS as static libraries for
# 32-bit and 64-bit Windows from Debian's source packages, once, into $VELTRANO_CACHE (else $XDG_CACHE_HOME/veltrano, else ~/.cache/veltrano).
#   scripts/build-windows-libraries.sh [i686-w64-mingw32] [x86_64-w64-mingw32]      (both when none is named)
#
# Safe to run again: complete libraries are not built again. Does not need root; checkTools below names what must be
# installed.
#
# The sources are source packages from the package sources of this machine, read through a private list so that the
# system's configuration does not change. apt checks the archive's signature, and through it the .dsc and every archive;
# the sums of versions that this script knows are also compared with those below.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cache=${VELTRANO_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/veltrano}
packages=(expat pugixml libpng1.6 libjpeg-turbo mbedtls)
# Raise it when the way of building changes: every cache is then built anew.
recipe=2

# Archive sums of the versions that this project was built and tested with.
knownSums="
ab00ee05c7067fd10a35c5d2a4922ebba746ddd50ff83b79c828da17bbdf1757  expat_2.5.0.orig.tar.gz
7e29f5db5067e55193540089ed0f3ec9676704cf79dcea81a9bfb9f49435ae53  expat_2.5.0-1+deb12u2.debian.tar.xz
5c5ad5d7caeb791420408042a7d88c2c6180781bf218feca259fd9d840a888e1  pugixml_1.13.orig.tar.gz
15ad5e40790d0155f6d4d55b7dd382974264d04e328de800a65e9fa5d5e8fb5d  pugixml_1.13-0.2.debian.tar.xz
a00e9d2f2f664186e4202db9299397f851aea71b36a35e74910b8820e380d441  libpng1.6_1.6.39.orig.tar.gz
ab14906eda9fddf14cbb1e589b9ba7439c22e233dc3c5e3cf9356c9625565a82  libpng1.6_1.6.39-2+deb12u5.debian.tar.xz
254f3642b04e309fee775123133c6464181addc150499561020312ec61c1bf7c  libjpeg-turbo_2.1.5.orig.tar.gz
cdb2433c2f7101345c1ffa14efb943787c675b86354691a32490845fe4bc9237  libjpeg-turbo_2.1.5-2.debian.tar.xz
3b4953aa55a681e084d31892d9904cc5328d6b4958ea57b90ae4b4f94ae69a8d  mbedtls_2.28.3.orig.tar.gz
3e03c61f63c7bbcd0bf695b53e6663ab448cc2e15429cd67d0e4f32e699645a9  mbedtls_2.28.3-1.debian.tar.xz
"

fail() {
  echo "build-windows-libraries: $*" >&2
  exit 1
}

checkTools() {
  local missing=() tool triplet
  for tool in apt-get apt-cache dpkg-source cmake ninja nasm sha256sum flock; do
    command -v "$tool" >/dev/null || missing+=("$tool")
  done
  for triplet in "${triplets[@]}"; do
    command -v "$triplet-g++-posix" >/dev/null || missing+=("$triplet-g++-posix")
    [ -e "/usr/$triplet/lib/libz.a" ] || missing+=("/usr/$triplet/lib/libz.a (package libz-mingw-w64-dev)")
  done
  [ ${#missing[@]} -eq 0 ] || fail "not installed: ${missing[*]}"
}

# apt with its own source lists and state in "$1".
privateApt() {
  local state=$1 tool=$2
  shift 2
  "$tool" -q -o Dir::Etc::sourcelist="$state/sources.list" -o Dir::Etc::sourceparts="$state/parts" \
    -o Dir::State::Lists="$state/lists" -o Dir::Cache="$state/cache" -o APT::Sandbox::User= "$@"
}

prepareSourceLists() {
  local state=$1 file name
  mkdir -p "$state/parts" "$state/lists/partial" "$state/cache/archives/partial"
  : >"$state/sources.list"
  for file in /etc/apt/sources.list /etc/apt/sources.list.d/*; do
    name=$(basename "$file")
    case $file in
      *.list) sed -nE 's/^[[:space:]]*deb([[:space:]])/deb-src\1/p' "$file" >>"$state/sources.list" ;;
      *.sources) sed -E 's/^Types:.*/Types: deb-src/' "$file" >"$state/parts/$name" ;;
    esac 2>/dev/null || true
  done
  # An index may fail (a foreign repository without sources); whether a source is available is checked next.
  privateApt "$state" apt-get update >"$state/update.log" 2>&1 || true
}

# Downloads the newest available version of source package "$2" into the current folder.
download() {
  local state=$1 package=$2 version
  for version in $(privateApt "$state" apt-cache showsrc --only-source "$package" |
    sed -n 's/^Version: //p' | sort -rVu); do
    if privateApt "$state" apt-get source --download-only "$package=$version" >"$state/$package.log" 2>&1; then
      return
    fi
    echo "  $package $version is listed but cannot be fetched; trying the version before it"
  done
  fail "no source package $package: see $state/update.log and $state/$package.log"
}

verify() {
  local folder=$1 file sum known
  for file in "$folder"/*.tar.*; do
    known=$(awk -v name="$(basename "$file")" '$2 == name { print $1 }' <<<"$knownSums")
    if [ -z "$known" ]; then
      echo "  $(basename "$file"): newer than this script knows, taken on the archive's signature alone"
      continue
    fi
    sum=$(sha256sum <"$file")
    [ "${sum%% *}" = "$known" ] || fail "$(basename "$file") has the sum ${sum%% *}, expected $known"
  done
}

fetchSources() {
  local folder=$1 state="$1/apt" package
  prepareSourceLists "$state"
  for package in "${packages[@]}"; do
    rm -rf "${folder:?}/$package"
    mkdir -p "$folder/$package"
    (cd "$folder/$package" && download "$state" "$package")
    verify "$folder/$package"
    # apt has checked the signatures already.
    (cd "$folder/$package" && dpkg-source --no-check --extract ./*.dsc source >extract.log 2>&1) ||
      fail "cannot unpack $package: see $folder/$package/extract.log"
  done
}

# build <triplet> <source package> [cmake option ...]
build() {
  local triplet=$1 package=$2 toolchain=win32 folder=source log
  shift 2
  [ "$triplet" = x86_64-w64-mingw32 ] && toolchain=win64
  log="$work/$package-$triplet.log"
  # Expat's repository keeps the library in a folder of its own.
  [ -e "$work/$package/source/CMakeLists.txt" ] || folder=source/$package
  {
    VELTRANO_CACHE=$cache cmake -G Ninja -S "$work/$package/$folder" -B "$work/$package/$triplet" \
      -DCMAKE_TOOLCHAIN_FILE="$root/cmake/$toolchain.cmake" -DCMAKE_BUILD_TYPE=Release \
      -DCMAKE_INSTALL_PREFIX="$work/install/$triplet" -DCMAKE_INSTALL_LIBDIR:STRING=lib "$@" &&
      cmake --build "$work/$package/$triplet" -j "$(nproc)" &&
      cmake --install "$work/$package/$triplet"
  } >"$log" 2>&1 || fail "$package for $triplet does not build: see $log"
}

# The ciphers, hashes and encodings that the Access engine uses, and nothing else of Mbed TLS: no random numbers, no
# threads, no network. The build and the programs that include the installed headers must see the same file.
configureMbedTls() {
  printf '#define MBEDTLS_%s\n' HAVE_ASM AESNI_C AES_C AES_ROM_TABLES CIPHER_MODE_CBC ARC4_C SHA1_C SHA512_C BASE64_C \
    PLATFORM_C DEPRECATED_REMOVED >"$work/mbedtls/source/include/mbedtls/config.h"
}

buildTriplet() {
  local triplet=$1
  # EXPAT_DTD=OFF: documents with a document type are refused, and a patch of Debian's builds with autotools only where
  # parameter entities are on.
  build "$triplet" expat -DEXPAT_DTD=OFF -DEXPAT_SHARED_LIBS=OFF -DEXPAT_BUILD_TOOLS=OFF \
    -DEXPAT_BUILD_EXAMPLES=OFF -DEXPAT_BUILD_TESTS=OFF -DEXPAT_BUILD_DOCS=OFF
  build "$triplet" pugixml -DBUILD_SHARED_LIBS=OFF
  # The assembler reads picture filters only, and this library writes.
  build "$triplet" libpng1.6 -DPNG_SHARED=OFF -DPNG_STATIC=ON -DPNG_TESTS=OFF -DPNG_HARDWARE_OPTIMIZATIONS=OFF \
    -DZLIB_LIBRARY="/usr/$triplet/lib/libz.a" -DZLIB_INCLUDE_DIR="/usr/$triplet/include"
  # REQUIRE_SIMD: without it a missing assembler gives a library that works several times slower.
  build "$triplet" libjpeg-turbo -DENABLE_SHARED=OFF -DENABLE_STATIC=ON -DWITH_TURBOJPEG=OFF -DREQUIRE_SIMD=ON
  configureMbedTls
  build "$triplet" mbedtls -DENABLE_PROGRAMS=OFF -DENABLE_TESTING=OFF
  cp "/usr/$triplet/lib/libz.a" "$work/install/$triplet/lib/"
  cp "/usr/$triplet/include/zlib.h" "/usr/$triplet/include/zconf.h" "$work/install/$triplet/include/"
}

mkdir -p "$cache"
exec 9>"$cache/.lock"
flock 9  # two builds may need the libraries at once

# complete <prefix>
complete() {
  local library
  for library in expat pugixml png16 jpeg mbedcrypto z; do
    [ -e "$1/lib/lib$library.a" ] || return 1
  done
}

wanted=("$@")
[ $# -gt 0 ] || wanted=(i686-w64-mingw32 x86_64-w64-mingw32)
triplets=()  # not built yet
for triplet in "${wanted[@]}"; do
  case $triplet in
    i686-w64-mingw32 | x86_64-w64-mingw32) ;;
    *) fail "unknown target '$triplet'" ;;
  esac
  prefix=$cache/$triplet
  { [ "$(cat "$prefix/recipe" 2>/dev/null || true)" = "$recipe" ] && complete "$prefix"; } || triplets+=("$triplet")
done
[ ${#triplets[@]} -gt 0 ] || exit 0

echo "Building Expat, pugixml, libpng, libjpeg-turbo and Mbed TLS for Windows (${triplets[*]}) into $cache"
checkTools
work=$cache/work
rm -rf "$work"
mkdir -p "$work"
fetchSources "$work"
for triplet in "${triplets[@]}"; do
  buildTriplet "$triplet"
  complete "$work/install/$triplet" || fail "the build for $triplet left libraries out: see $work"
  echo "$recipe" >"$work/install/$triplet/recipe"
  # Moved last, so that the final name only ever has a complete prefix.
  rm -rf "${cache:?}/$triplet"
  mv "$work/install/$triplet" "$cache/$triplet"
done
rm -rf "$work"
