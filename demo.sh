#!/usr/bin/env bash
# Shows what the library does in a script host: builds the 32-bit DLL, registers it in a private Wine prefix, runs the
# VBScript samples and says where their results are. First installs the Debian packages that it needs.
#   ./demo.sh            the DLL, under Wine
#   ./demo.sh --native   the portable library, without Wine
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")"

native=false
case "${1:-}" in
  --native) native=true ;;
  "") ;;
  *) echo "usage: ./demo.sh [--native]" >&2; exit 2 ;;
esac

preview() {
  # mutool has the standard fonts built in, so the pictures look the same on every machine. Its messages are about the
  # cross-reference table, whose offsets are too small by design.
  mutool draw -q -r 60 -o "${1%.pdf}-%d.png" "$1" 2>/dev/null
  echo "  report:  $PWD/$1"
  echo "  preview: $PWD/${1%.pdf}-1.png (one picture a page)"
}

if ! scripts/install-packages.sh native; then
  echo "demo.sh: the packages that the native build needs cannot be installed here" >&2
  exit 1
fi
out=build/demo
rm -rf "$out"
mkdir -p "$out"

if $native; then
  scripts/build.sh native native_report
  echo "Running the native sample"
  build/native/samples/native_report samples "$out"
  preview "$out/report.pdf"
  exit 0
fi

if ! scripts/install-packages.sh windows; then
  echo "demo.sh: Wine and the Windows compilers cannot be installed here; ./demo.sh --native shows the portable library" >&2
  exit 1
fi
scripts/build-windows-libraries.sh i686-w64-mingw32
scripts/build.sh win32 VeltranoFrameWorkDLL picture_host
scripts/build.sh native make_contacts

echo "Registering the DLL in the Wine prefix $PWD/build/wine"
scripts/wine.sh --prepare
scripts/wine.sh 'C:\windows\syswow64\regsvr32.exe' /s build/win32/VeltranoFrameWorkDLL.dll

# Wine's script host always exits with 0, so each sample says "done" at its end. Its output is in the code page of a
# console.
# sample NAME [argument ...]
sample() {
  local name=$1
  shift
  echo "Running samples/$name.vbs"
  if ! scripts/wine.sh 'C:\windows\syswow64\cscript.exe' //nologo "samples/$name.vbs" "$@" 2>/dev/null |
    tr -d '\r' | iconv -c -f cp850 -t utf-8 | tee "$out/$name.log" | grep -v '^done$' | sed 's/^/  /'; then :; fi
  grep -qx done "$out/$name.log" || { echo "demo.sh: samples/$name.vbs did not reach its end" >&2; exit 1; }
}

sample report samples "$out"
preview "$out/report.pdf"
sample tour samples "$out"
xmllint --noout "$out/tour.kml" "$out/settings.xml" && echo "  xmllint reads tour.kml and settings.xml"
sample pictures samples "$out"
echo "Running the C++ host of pictures"
scripts/wine.sh build/win32/samples/picture_host.exe samples "$out" 2>/dev/null | tr -d '\r' | tee "$out/picture_host.log" |
  { grep -v '^done$' || true; } | sed 's/^/  /'
grep -qx done "$out/picture_host.log" || { echo "demo.sh: picture_host did not reach its end" >&2; exit 1; }
build/native/samples/make_contacts "$out/contacts.mdb"
sample contacts "$out"
echo "  mdb-export lists the same table:"
mdb-export "$out/contacts.mdb" Contacts | cut -c1-100 | sed 's/^/    /'
echo "Everything is in $PWD/$out"
