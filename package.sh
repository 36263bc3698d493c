#!/usr/bin/env bash
# Makes the packages in out/ and tries them: a zip and installers for Windows, an archive and a Debian package for Linux,
# the symbols for debuggers, a manifest for winget. First installs the Debian packages that it needs.
#   ./package.sh              makes and tries them
#   ./package.sh --no-try     only makes them
# The environment variable VELTRANO_SIGN may name a program that signs the file it is given: it is run for each DLL and
# program for Windows before it is packed, and for each installer. packaging/publisher says what the publisher fills in.
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")"

try=true
case "${1:-}" in
  --no-try) try=false ;;
  "") ;;
  *) echo "usage: ./package.sh [--no-try]" >&2; exit 2 ;;
esac

if ! scripts/install-packages.sh native windows packages; then
  echo "package.sh: the packages that building needs cannot be installed here" >&2
  exit 1
fi
scripts/build-windows-libraries.sh

scripts/build.sh native-package VeltranoFrameWork make_contacts veltrano_program
scripts/build.sh win32-package VeltranoFrameWorkDLL veltrano_metrics veltrano_program
scripts/build.sh win64-package VeltranoFrameWorkDLL veltrano_metrics veltrano_program

rm -rf out
scripts/package/pack.sh build/package out
awk 'NR > 1 { printf "  %9d  out/%s\n", $5, $9 }' < <(ls -l out)
if $try; then
  scripts/try-package.sh
fi
