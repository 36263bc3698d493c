#!/usr/bin/env bash
# Tries the packages in out/ as their users would and reports the results: the zip and the installers under Wine, the
# archive for Linux with CMake and with pkg-config. Needs what package.sh installs. Exits 1 if anything is wrong.
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

# Stops all Wine processes. The folder is large and is kept only after a failure, for debugging.
end() {
  local prefix
  for prefix in "$work"/prefix*/; do WINEPREFIX=${prefix%/} wineserver -k 2>/dev/null || true; done
  [ "$1" -ne 0 ] || rm -rf "$work"
}
trap 'end $?' EXIT

windows_path() { printf 'Z:%s' "${1//\//\\}"; }

# use_prefix NAME [win32]: makes a new Wine prefix and runs the script hosts in it once, since Wine registers them at their
# first use. They are copied out of it, because a 32-bit loader redirects system32 to syswow64.
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

# The registry for comparison, one value a line, preceded by its key; without what the installer service stores for itself
# and the time of a display driver, which Wine writes each time.
registry() {
  wineserver -k || true
  wineserver -w
  awk '/^\[/ { sub(/ [0-9]+$/, ""); key = $0; print key; next }
    key && !/^#/ && NF { print key " " $0 }' "$WINEPREFIX/system.reg" "$WINEPREFIX/user.reg" |
    grep -v 'DriverDateData' | grep -vE '^\[Software\\\\(Wow6432Node\\\\)?(Microsoft\\\\Windows\\\\CurrentVersion|Classes)\\\\Installer' | LC_ALL=C sort
}

# The registration added between two states of the registry, with the path of the DLL reduced to its name; without the list
# of installed programs and the folder of a help file that does not exist.
additions() {
  LC_ALL=C comm -13 "$1" "$2" | grep -E '^\[Software\\\\Classes' | grep -v 'HELPDIR' |
    sed -E 's/"[^"]*\\\\(VeltranoFrameWorkDLL\.dll)"/"\1"/'
}

# The first line of text of the page that a program wrote, or what is missing.
page() {
  if [ ! -e "$1" ]; then
    echo "no file"
  elif pdftotext "$1" - 2>&1 >/dev/null | grep -q 'font'; then
    echo "no font"
  else
    pdftotext "$1" - 2>/dev/null | head -n 1
  fi
}

# contacts x86|AMD64 SAMPLES_FOLDER_ON_WINDOWS LABEL: runs contacts.vbs, which copies the database there.
contacts() {
  local said
  rm -rf "$work/contacts"
  mkdir "$work/contacts"
  said=$("$wine" "$work/cscript-$1.exe" //nologo "$2\\contacts.vbs" "$(windows_path "$work/contacts")" 2>/dev/null | tr -d '\r') || true
  expect "$3: contacts.vbs says" "done" "$(tail -n 1 <<<"$said")"
  expect "$3: people in its database" 7 "$(mdb-export "$work/contacts/contacts.mdb" Contacts 2>/dev/null | grep -cE '^[0-9]+,"' || true)"
}

# unfinished x86|AMD64 SAMPLES_FOLDER: the scripts for classes and of the cookbook that do not say "done" at their end. Wine's
# script host has no LoadPicture, which png.vbs needs.
unfinished() {
  local script
  rm -rf "$work/scripts"
  mkdir "$work/scripts"
  cp "$2/contacts.mdb" "$2/photo.jpg" "$work/scripts/"
  for script in "$2"/cookbook/*.vbs "$2"/classes/*.vbs; do
    "$wine" "$work/cscript-$1.exe" //nologo "$(windows_path "$script")" "$(windows_path "$work/scripts")" 2>/dev/null |
      tr -d '\r' | tail -n 1 | grep -qx done || basename "$script"
  done
}

# texts FOLDER FILE ...: each file exists and is not empty.
texts() {
  local folder=$1 name
  shift
  for name in "$@"; do
    expect "$name" "there" "$([ -s "$folder/$name" ] && echo "there" || echo "missing")"
  done
}

# dead_links FOLDER: the relative links of its pages to files that do not exist, as they are in the unpacked package.
dead_links() {
  grep -roE '(href|src)="[^"#:]+[#"]' --include='*.html' "$1" | sed -E 's/(href|src)="//; s/[#?"].*$//' | sort -u |
    while IFS=: read -r page link; do [ -e "$(dirname "$page")/$link" ] || echo "$(basename "$page"): $link"; done
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
expect "licence texts" 10 "$(find "$folder/licenses" -name '*.txt' ! -name README.txt -size +1k | wc -l)"
texts "$folder" README.txt LICENSE.txt NOTICE.txt CHANGELOG.txt licenses/Apache-2.0.txt
expect "lines of scripts and stubs that end in CR LF" "all" \
  "$(grep -rqv $'\r$' "$folder/stubs" "$folder/samples"/*.vbs "$folder/samples"/*/ && echo "not all" || echo "all")"
texts "$folder" manual/index.html manual/searchindex.js manual/licenses/furo.txt stubs/veltrano_constants.vbs stubs/Veltrano.cs
expect "links of the manual that lead nowhere" "" "$(dead_links "$folder/manual")"
for architecture in x86 x64; do
  expect "$architecture: metrics beside the DLL" 16 "$(find "$folder/$architecture" -maxdepth 1 -name '*.afm' | wc -l)"
done
use_prefix zip
for architecture in x86 x64; do
  expect "$architecture: veltrano.exe says" "veltrano $(basename "$zip" | cut -d - -f 2)" \
    "$("$wine" "$folder/$architecture/veltrano.exe" --version 2>/dev/null | tr -d '\r')"
done
registry >"$work/zip-before"
"$wine" 'C:\windows\syswow64\regsvr32.exe' /s "$(windows_path "$folder/x86/VeltranoFrameWorkDLL.dll")"
script x86 "$(windows_path "$folder/samples")" "x86 by regsvr32"
contacts x86 "$(windows_path "$folder/samples")" "x86 by regsvr32"
expect "x86 by regsvr32: scripts that do not reach their end" png.vbs "$(unfinished x86 "$folder/samples")"
"$wine" 'C:\windows\system32\regsvr32.exe' /s "$(windows_path "$folder/x64/VeltranoFrameWorkDLL.dll")"
script AMD64 "$(windows_path "$folder/samples")" "x64 by regsvr32"
contacts AMD64 "$(windows_path "$folder/samples")" "x64 by regsvr32"
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

# install ARGUMENT ...: runs msiexec and prints its exit code.
install() { "$wine" msiexec "$@" /qn >/dev/null 2>&1 && echo 0 || echo "$?"; }

# All files of the drive, except the copies of the installer service.
files() { (cd "$WINEPREFIX/drive_c" && find . ! -path ./windows/Installer ! -path './windows/temp/*' | LC_ALL=C sort); }

# try_installer NAME FILE ARCHITECTURE ...
try_installer() {
  local name=$1 file=$2 architecture
  shift 2
  registry >"$work/$name-before"
  files >"$work/$name-files-before"
  expect "msiexec /i answers" 0 "$(install /i "$(windows_path "$file")")"
  expect "DLLs installed" "$#" "$(find "$WINEPREFIX/drive_c" -name VeltranoFrameWorkDLL.dll | wc -l)"
  texts "$WINEPREFIX/drive_c/Program Files/VeltranoFrameWork" LICENSE.txt NOTICE.txt CHANGELOG.txt licenses/Apache-2.0.txt
  expect "the Start menu has the manual" "yes" \
    "$(find "$WINEPREFIX/drive_c" -name 'Veltrano FrameWork manual.lnk' | grep -q . && echo yes || echo no)"
  expect "the help link leads to the manual" "yes" \
    "$(registry | grep -q 'HelpLink.*file:.*manual.*index.html' && echo yes || echo no)"
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
# In a folder with a blank in its name, as users have them; not for pkg-config, whose output the shell splits at blanks.
mkdir -p "$work/linux" "$work/program"
tar -xf "$tar" -C "$work/linux"
prefix=$(echo "$work/linux"/*)
plain=$(mktemp -d)
cp -r "$prefix" "$plain/veltrano"
saw "files" "$(find "$prefix" -type f | wc -l), $(du -sh --apparent-size "$prefix" | cut -f 1) unpacked"
texts "$prefix/share/doc/veltranoframework" LICENSE NOTICE CHANGELOG.md Apache-2.0.txt manual/index.html samples/contacts.mdb
expect "links of the manual that lead nowhere" "" "$(dead_links "$prefix/share/doc/veltranoframework/manual")"
expect "its program: doctor finds" "nothing wrong" "$("$prefix/bin/veltrano" doctor >"$work/doctor.log" && echo "nothing wrong" || echo "faults, see $work/doctor.log")"
expect "its manual page" "there" "$([ -s "$prefix/share/man/man1/veltrano.1.gz" ] && echo "there" || echo "missing")"
cat >"$work/program/hello.cpp" <<'PROGRAM'
#include <veltrano/pdf.h>

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
texts "$prefix/include/veltrano" pdf.h kml.h xml.h ini.h jpg.h png.h mdb.h wev.h value.h text.h version.h
(cd "$prefix/include" && printf '#include <%s>\n' veltrano/*) >"$work/headers.cpp"
expect "the headers, one by one and together, compile" "clean" "$(for header in "$prefix"/include/veltrano/*.h "$work/headers.cpp"; do
  g++ -std=c++20 -Wall -Wextra -DVELTRANO_INSTALLED -fsyntax-only -x c++ -I "$prefix/include" -include "$header" /dev/null
done 2>"$work/headers.log" && [ ! -s "$work/headers.log" ] && echo "clean" || echo "not clean, see $work/headers.log")"
version=$(basename "$tar" | cut -d - -f 2)
expect "the version of the headers" "$version" "$(printf '#include <veltrano/version.h>\nversion: %s\n' \
  'VELTRANO_VERSION_MAJOR VELTRANO_VERSION_MINOR VELTRANO_VERSION_PATCH' | g++ -E -P -x c++ -I "$prefix/include" - |
  sed -n 's/^version: //p' | tr ' ' .)"
# hello FOLDER LABEL: runs the program in that folder.
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
# shellcheck disable=SC2046
PKG_CONFIG_PATH="$plain/veltrano/lib/pkgconfig" sh -c 'g++ -std=c++20 "$1/share/doc/veltranoframework/samples/native_report.cpp" \
  $(pkg-config --cflags --libs veltranoframework) -o "$2/native_report" &&
  "$2/native_report" "$1/share/doc/veltranoframework/samples" "$2"' sh "$plain/veltrano" "$work/pkgconfig" 2>"$work/report.log" ||
  tail -n 20 "$work/report.log"
expect "its sample native_report.cpp: the page shows" "Orders of the year" "$(page "$work/pkgconfig/report.pdf")"
# shellcheck disable=SC2046
PKG_CONFIG_PATH="$plain/veltrano/lib/pkgconfig" sh -c 'g++ -std=c++20 "$1/hosts/members.cpp" \
  $(pkg-config --cflags --libs veltranoframework) -o "$2/members" &&
  "$2/members" "$1/contacts.mdb" "$1/photo.jpg" "$2"' sh "$plain/veltrano/share/doc/veltranoframework/samples" "$work/pkgconfig" \
  >"$work/members.log" 2>&1 || true
expect "its sample members.cpp says" "done" "$(tail -n 1 "$work/members.log")"
# On a machine without the package: the metrics are beside the program, or in share beside its folder.
rm -rf "$plain"
mkdir -p "$work/carried/beside" "$work/carried/tree/bin" "$work/carried/tree/share/veltranoframework"
cp "$work/pkgconfig/hello" "$prefix"/share/veltranoframework/metrics/*.afm "$work/carried/beside/"
hello "$work/carried/beside" "carried, metrics beside the program"
cp "$work/pkgconfig/hello" "$work/carried/tree/bin/"
cp -r "$prefix/share/veltranoframework/metrics" "$work/carried/tree/share/veltranoframework/"
hello "$work/carried/tree/bin" "carried, metrics in ../share"

if [ "$failures" -gt 0 ]; then
  echo "try-package: $failures checks failed" >&2
  exit 1
fi
echo "The packages work."
