#!/usr/bin/env bash
# Tries the packages in out/ as their users would and says what it saw: the zip and the installers under Wine, the
# archive for Linux with CMake and with pkg-config. Needs what package.sh installs. Exits 1 when anything is amiss.
set -eu
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
work="$root/build/try package"
rm -rf "$work"
mkdir -p "$work"
wine="$root/scripts/wine.sh"
failures=0

saw() { printf '  %-58s %s\n' "$1" "$2"; }
# expect LABEL EXPECTED SEEN
expect() {
  if [ "$2" = "$3" ]; then
    saw "$1" "$3"
  else
    saw "$1" "'$3' INSTEAD OF '$2'"
    failures=$((failures + 1))
  fi
}

# same LABEL WORDS FILE FILE
same() {
  local seen=$2
  diff "$3" "$4" >"$4.diff" || seen="not $2, see ${4#"$root"/}.diff"
  expect "$1" "$2" "$seen"
}

one() {
  local found=(out/$1)
  [ -e "${found[0]}" ] || { echo "try-package: no out/$1: run ./package.sh" >&2; exit 1; }
  echo "$root/${found[0]}"
}
zip=$(one 'VeltranoFrameWork-*-windows.zip')
x64=$(one 'VeltranoFrameWork-*-x64.msi')
x86=$(one 'VeltranoFrameWork-*-x86.msi')
tar=$(one 'VeltranoFrameWork-*-linux-*.tar.gz')

# Nothing of the prefixes keeps running. They are large: they stay only for who looks for a fault.
end() {
  local prefix
  for prefix in "$work"/prefix*/; do WINEPREFIX=${prefix%/} wineserver -k 2>/dev/null || true; done
  [ "$1" -ne 0 ] || rm -rf "$work"
}
trap 'end $?' EXIT

windows_path() { printf 'Z:%s' "${1//\//\\}"; }

# use_prefix NAME [win32]: a new Wine prefix, in which the script hosts have run: Wine registers them at their first use.
# They are copied out of it, because to a 32-bit loader system32 is syswow64: a copy elsewhere is what it is.
use_prefix() {
  local folder host
  export WINEPREFIX="$work/prefix $1"
  unset WINEARCH
  [ -z "${2:-}" ] || export WINEARCH=$2
  "$wine" --prepare
  echo 'WScript.Echo CreateObject("WScript.Shell").ExpandEnvironmentStrings("%PROCESSOR_ARCHITECTURE%")' >"$work/word-size.vbs"
  for folder in system32:AMD64 syswow64:x86; do
    host="$WINEPREFIX/drive_c/windows/${folder%:*}/cscript.exe"
    if [ -e "$host" ]; then
      [ -z "${2:-}" ] || folder=system32:x86
      cp "$host" "$work/cscript-${folder#*:}.exe"
      expect "a script host for ${folder#*:} says" "${folder#*:}" \
        "$("$wine" "$work/cscript-${folder#*:}.exe" //nologo "$(windows_path "$work/word-size.vbs")" 2>/dev/null | tr -d '\r')"
    fi
  done
}

# The registry, a line a value with its key in front, so that it can be compared. What the installer service keeps for
# itself is not what it installs, and the time of a display driver that Wine writes anew each time is nobody's.
registry() {
  wineserver -k || true
  wineserver -w
  awk '/^\[/ { sub(/ [0-9]+$/, ""); key = $0; print key; next }
    key && !/^#/ && NF { print key " " $0 }' "$WINEPREFIX/system.reg" "$WINEPREFIX/user.reg" |
    grep -v 'DriverDateData' | grep -vE '^\[Software\\\\(Wow6432Node\\\\)?(Microsoft\\\\Windows\\\\CurrentVersion|Classes)\\\\Installer' | LC_ALL=C sort
}

# What was registered between two states of the registry, with the DLL's name for its path. Neither where Windows lists
# installed programs nor the folder of a help file that there is not.
additions() {
  LC_ALL=C comm -13 "$1" "$2" | grep -E '^\[Software\\\\Classes' | grep -v 'HELPDIR' |
    sed -E 's/"[^"]*\\\\(VeltranoFrameWorkDLL\.dll)"/"\1"/'
}

# The page that a script or program wrote: its first line of text and whether its font is there.
page() {
  if [ ! -e "$1" ]; then
    echo "no file"
  elif pdftotext "$1" - 2>&1 >/dev/null | grep -q 'font'; then
    echo "no font"
  else
    pdftotext "$1" - 2>/dev/null | head -n 1
  fi
}

# script x86|AMD64 SAMPLES_FOLDER_ON_WINDOWS LABEL
script() {
  local pdf="$work/script.pdf" said
  rm -f "$pdf"
  said=$("$wine" "$work/cscript-$1.exe" //nologo "$2\\hosts\\hello.vbs" "$(windows_path "$pdf")" 2>/dev/null | tr -d '\r') || true
  expect "$3: hello.vbs says" "done" "$(tail -n 1 <<<"$said")"
  expect "$3: its page shows" "Hello from VBScript" "$(page "$pdf")"
}

echo "The zip, $(basename "$zip")"
unzip -q "$zip" -d "$work/zip"
folder=$(echo "$work/zip"/*)
saw "files" "$(find "$folder" -type f | wc -l), $(du -sh --apparent-size "$folder" | cut -f 1) unpacked"
expect "licence texts" 6 "$(find "$folder/licenses" -name '*.txt' ! -name README.txt -size +1k | wc -l)"
for architecture in x86 x64; do
  expect "$architecture: metrics beside the DLL" 16 "$(find "$folder/$architecture" -maxdepth 1 -name '*.afm' | wc -l)"
done
use_prefix zip
registry >"$work/zip-before"
"$wine" 'C:\windows\syswow64\regsvr32.exe' /s "$(windows_path "$folder/x86/VeltranoFrameWorkDLL.dll")"
script x86 "$(windows_path "$folder/samples")" "x86 by regsvr32"
"$wine" 'C:\windows\system32\regsvr32.exe' /s "$(windows_path "$folder/x64/VeltranoFrameWorkDLL.dll")"
script AMD64 "$(windows_path "$folder/samples")" "x64 by regsvr32"
registry >"$work/zip-registered"
i686-w64-mingw32-g++-posix -municode -static "$folder/samples/hosts/hello.cpp" "$folder/x86/include/veltrano_i.c" \
  -I "$folder/x86/include" -o "$work/hello.exe" -lole32 -loleaut32 -luuid 2>"$work/hello.log" || cat "$work/hello.log"
expect "C++ host, built from the zip: hello.exe says" "done" \
  "$("$wine" "$work/hello.exe" "$(windows_path "$work/cpp.pdf")" 2>/dev/null | tr -d '\r')"
expect "C++ host: its page shows" "Hello from C++" "$(page "$work/cpp.pdf")"
for target in syswow64:x86 system32:x64; do
  "$wine" "C:\\windows\\${target%:*}\\regsvr32.exe" /s /u "$(windows_path "$folder/${target#*:}/VeltranoFrameWorkDLL.dll")"
done
registry >"$work/zip-after"
same "registry after regsvr32 /u of both" "as before" "$work/zip-before" "$work/zip-after"

# install FILE ...: what msiexec answers.
install() { "$wine" msiexec "$@" /qn >/dev/null 2>&1 && echo 0 || echo "$?"; }

# Of the drive, but for the folder in which the installer service keeps its copies.
files() { (cd "$WINEPREFIX/drive_c" && find . ! -path ./windows/Installer ! -path './windows/temp/*' | LC_ALL=C sort); }

# try_installer NAME FILE ARCHITECTURE ...
try_installer() {
  local name=$1 file=$2 architecture
  shift 2
  registry >"$work/$name-before"
  files >"$work/$name-files-before"
  expect "msiexec /i answers" 0 "$(install /i "$(windows_path "$file")")"
  expect "DLLs installed" "$#" "$(find "$WINEPREFIX/drive_c" -name VeltranoFrameWorkDLL.dll | wc -l)"
  for architecture in "$@"; do
    script "${architecture/x64/AMD64}" 'C:\Program Files\VeltranoFrameWork\samples' "$architecture by the installer"
  done
  registry >"$work/$name-registered"
  if [ $# -eq 2 ]; then
    additions "$work/zip-before" "$work/zip-registered" >"$work/by-regsvr32"
    additions "$work/$name-before" "$work/$name-registered" >"$work/by-installer"
    same "registered in $(wc -l <"$work/by-installer") lines" "as by regsvr32" "$work/by-regsvr32" "$work/by-installer"
  fi
  expect "msiexec /x answers" 0 "$(install /x "$(windows_path "$file")")"
  registry >"$work/$name-after"
  same "registry after removal" "as before" "$work/$name-before" "$work/$name-after"
  files >"$work/$name-files-after"
  same "files and folders after removal" "as before" "$work/$name-files-before" "$work/$name-files-after"
}

echo "The installer for 64-bit Windows, $(basename "$x64")"
use_prefix x64
try_installer x64 "$x64" x64 x86
expect "the x86 package on 64-bit Windows" "refused" "$([ "$(install /i "$(windows_path "$x86")")" = 0 ] && echo "taken" || echo "refused")"

echo "The installer for 32-bit Windows, $(basename "$x86")"
use_prefix x86 win32
try_installer x86 "$x86" x86
unset WINEARCH

echo "The archive for Linux, $(basename "$tar")"
# A blank in the name, as users have them. pkg-config's answers are split at blanks by the shell: another name for it.
mkdir -p "$work/linux" "$work/program"
tar -xf "$tar" -C "$work/linux"
prefix=$(echo "$work/linux"/*)
plain=$(mktemp -d)
cp -r "$prefix" "$plain/veltrano"
saw "files" "$(find "$prefix" -type f | wc -l), $(du -sh --apparent-size "$prefix" | cut -f 1) unpacked"
cat >"$work/program/hello.cpp" <<'PROGRAM'
#include "veltrano/pdf.h"

int main() {
  veltrano::VeltranoPDF pdf;
  pdf.PDFFileName("hello.pdf");
  pdf.PDFBeginDoc();
  pdf.PDFSetFont(veltrano::FONT_ARIAL, 24);
  pdf.PDFTextOut("Hello from Linux", 2, 3);
  pdf.PDFEndDoc();
  return pdf.PDFGetStringWidth("Hello", "Helvetica", 10) == 22.78 ? 0 : 1;
}
PROGRAM
cat >"$work/program/CMakeLists.txt" <<'PROJECT'
cmake_minimum_required(VERSION 3.25)
project(hello LANGUAGES CXX)
find_package(VeltranoFrameWork 1.0 REQUIRED)
add_executable(hello hello.cpp)
target_link_libraries(hello PRIVATE VeltranoFrameWork::VeltranoFrameWork)
PROJECT
(cd "$prefix/include/veltranoframework" && find . -name '*.h' | sed 's/.*/#include "&"/') >"$work/headers.cpp"
expect "its $(wc -l <"$work/headers.cpp") headers, compiled together" "clean" "$(g++ -std=c++20 -Wall -Wextra -fsyntax-only \
  -I "$prefix/include/veltranoframework" "$work/headers.cpp" 2>"$work/headers.log" && [ ! -s "$work/headers.log" ] && echo "clean" ||
  echo "not clean, see $work/headers.log")"
# hello FOLDER LABEL: runs the program that lies there.
hello() {
  rm -f "$1/hello.pdf"
  expect "$2: its text is measured" "yes" "$(cd "$1" && ./hello && echo yes || echo no)"
  expect "$2: its page shows" "Hello from Linux" "$(page "$1/hello.pdf")"
}
(cmake -S "$work/program" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" && cmake --build "$work/cmake") \
  >"$work/cmake.log" 2>&1 || tail -n 20 "$work/cmake.log"
hello "$work/cmake" "by find_package, in a folder with a blank"
mkdir "$work/pkgconfig"
# shellcheck disable=SC2046
PKG_CONFIG_PATH="$plain/veltrano/lib/pkgconfig" sh -c 'g++ -std=c++20 "$1/program/hello.cpp" \
  $(pkg-config --cflags --libs veltranoframework) -o "$1/pkgconfig/hello"' sh "$work" 2>"$work/pkgconfig.log" ||
  tail -n 20 "$work/pkgconfig.log"
hello "$work/pkgconfig" "by pkg-config"
# Carried to a machine without the package: the metrics beside the program, or in share beside its folder.
rm -rf "$plain"
mkdir -p "$work/carried/beside" "$work/carried/tree/bin" "$work/carried/tree/share/veltranoframework"
cp "$work/pkgconfig/hello" "$prefix"/share/veltranoframework/metrics/*.afm "$work/carried/beside/"
hello "$work/carried/beside" "carried, metrics beside the program"
cp "$work/pkgconfig/hello" "$work/carried/tree/bin/"
cp -r "$prefix/share/veltranoframework/metrics" "$work/carried/tree/share/veltranoframework/"
hello "$work/carried/tree/bin" "carried, metrics in ../share"

if [ "$failures" -gt 0 ]; then
  echo "try-package: $failures things are amiss" >&2
  exit 1
fi
echo "The packages do what they should."
