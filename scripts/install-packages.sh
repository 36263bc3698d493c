#!/usr/bin/env bash
# Installs the Debian packages that a task needs. Silent and instant if nothing is missing.
#   scripts/install-packages.sh native|windows|benchmarks|packages ...
# Needs root or sudo. Exits 1 with one line if a package cannot be installed.
set -eu

native=(g++ cmake ninja-build ccache pkg-config git python3 util-linux
        libexpat1-dev libpugixml-dev libpng-dev libjpeg62-turbo-dev libturbojpeg0-dev libmbedtls-dev libgtest-dev
        libgmock-dev libcli11-dev
        clang-format clang-tidy poppler-utils mupdf-tools qpdf libxml2-utils libxml2-dev pngcheck mdbtools imagemagick)
windows=(wine wine32:i386 wine64 libwine-dev g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix mingw-w64-tools
         libz-mingw-w64-dev libcli11-dev googletest nasm dpkg-dev mono-mcs)
packages=(wixl msitools zip unzip help2man faketime dpkg-dev gdb python3-yaml python3-sphinx python3-myst-parser furo)
benchmarks=(libbenchmark-dev libhpdf-dev libkml-dev libpixman-1-dev libiniparser-dev libsimpleini-dev libsqlite3-dev)

wanted=()
for group in "$@"; do
  case "$group" in
    native) wanted+=("${native[@]}") ;;
    windows) wanted+=("${windows[@]}") ;;
    benchmarks) wanted+=("${benchmarks[@]}") ;;
    packages) wanted+=("${packages[@]}") ;;
    *) echo "install-packages: unknown group '$group'" >&2; exit 2 ;;
  esac
done

installed() { [ "$(dpkg-query -W -f '${db:Status-Abbrev}' "$1" 2>/dev/null)" = "ii " ]; }

missing=()
foreign=false
for package in "${wanted[@]}"; do
  if ! installed "$package"; then
    missing+=("$package")
    case "$package" in *:i386) foreign=true ;; esac
  fi
done
[ ${#missing[@]} -gt 0 ] || exit 0

if ! command -v apt-get >/dev/null 2>&1; then
  echo "install-packages: this needs Debian's apt-get; missing: ${missing[*]}" >&2
  exit 1
fi
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null 2>&1; then
    echo "install-packages: run as root, or install sudo; missing: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

echo "Installing ${#missing[@]} packages: ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if $foreign && ! dpkg --print-foreign-architectures | grep -qx i386; then
  "${as_root[@]}" dpkg --add-architecture i386
fi
# An update may fail for a foreign architecture although all packages are available, so only the installation decides.
"${as_root[@]}" apt-get update >"$log" 2>&1 || true
# One suite for all packages: otherwise two architectures may get different versions of a library they share.
suite=$(. /etc/os-release && echo "${VERSION_CODENAME:-bookworm}")
if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
  -t "$suite" "${missing[@]}" >>"$log" 2>&1; then
  tail -n 5 "$log" >&2
  echo "install-packages: could not install: ${missing[*]}" >&2
  exit 1
fi
