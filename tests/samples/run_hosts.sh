#!/usr/bin/env bash
# Registers the DLL in a Wine prefix of its own and runs what a reader of the documentation would run: the samples of each
# language that Wine or a stand-in has a host for, and every example of the pages.
#   run_hosts.sh DLL HELLO.exe BRIDGE.exe MAKE_CONTACTS.exe FOLDER POINTER_SIZE PYTHON
# Script hosts end with 0 whatever happens, so each run must say "done" as its last line and leave its files behind.
set -eu
dll=$1 program=$2 bridge=$3 makeContacts=$4 folder=$5 pointer_size=$6 python=$7
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
samples="$root/samples"
system=system32
[ "$pointer_size" -eq 8 ] || system=syswow64

rm -rf "$folder"
mkdir -p "$folder/files/metrics"
# Beside the folder, so that it is made once.
export WINEPREFIX="$folder.wine"
wine="$root/scripts/wine.sh"
"$wine" --prepare
# However the test ends, nothing of the prefix keeps running.
trap 'wineserver -k || true' EXIT

windows_path() { printf 'Z:%s' "${1//\//\\}"; }

failures=0
fail() {
  echo "FAILED: $*" >&2
  failures=$((failures + 1))
}

# run NAME COMMAND ...: keeps what the command says in NAME.log.
run() {
  local name=$1
  shift
  "$@" 2>"$folder/$name.err" | tr -d '\r' >"$folder/$name.log" || true
  [ "$(tail -n 1 "$folder/$name.log")" = done ] ||
    fail "$name came no further than: $(tail -n 2 "$folder/$name.log") $(tail -n 1 "$folder/$name.err")"
}

# script NAME FILE ARGUMENT ...: a script of Wine's script host.
script() {
  local name=$1 arguments=() argument
  shift
  for argument in "$@"; do arguments+=("$(windows_path "$argument")"); done
  run "$name" "$wine" "$host" //nologo "${arguments[@]}"
}

run_python() {
  local name=$1
  shift
  run "$name" "$python" "$@"
}

# page FILE TEXT: the text of the file's first line.
page() {
  local text
  text=$(pdftotext "$folder/files/$1.pdf" - 2>/dev/null | head -n 1) || true
  [ "$text" = "$2" ] || fail "$1.pdf shows '$text' instead of '$2'"
}

# The loader may be a 32-bit one, to which system32 is syswow64: a copy of the host elsewhere is what it is.
host="$folder/cscript.exe"
cp "$WINEPREFIX/drive_c/windows/$system/cscript.exe" "$host"

# Without registration: all files beside the program, with the manifest that the page on C++ shows. The prefix is that of an
# earlier run, perhaps.
"$wine" "C:\\windows\\$system\\regsvr32.exe" /s /u "$(windows_path "$dll")"
"$wine" "$program" "$(windows_path "$folder/files/cpp.pdf")" >/dev/null 2>&1 && fail "the class is registered still"
beside="$folder/beside"
mkdir "$beside"
cp "$(dirname "$dll")"/*.afm "$(dirname "$dll")"/*.manifest "$dll" "$program" "$beside/"
sed -n '/<!-- manifest -->/,/^```$/p' "$root/docs/hosts/cpp.md" | sed '1,2d;$d' >"$beside/$(basename "$program").manifest"
run unregistered "$wine" "$beside/$(basename "$program")" "$(windows_path "$folder/files/unregistered.pdf")"

"$wine" "C:\\windows\\$system\\regsvr32.exe" /s "$(windows_path "$dll")" || fail "the DLL cannot be registered"

VELTRANO_TRACE=$(windows_path "$folder/trace.txt")
export VELTRANO_TRACE
# The samples' database and photo, for the members' lists, the recipes and the examples of the pages.
cp "$samples/photo.jpg" "$folder/files/"
"$wine" "$makeContacts" "$(windows_path "$folder/files/contacts.mdb")"

# TMPDIR, which the examples want, would make Wine start another server with an older registry.
export VELTRANO_BRIDGE="env|-u|TMPDIR|$wine|$bridge" PYTHONPATH="$here/pywin32" PYTHONDONTWRITEBYTECODE=1
for language in vbs js py; do
  out="$folder/files/$language"
  mkdir "$out"
  start=script
  [ "$language" != py ] || start=run_python
  "$start" "hello.$language" "$samples/hosts/hello.$language" "$out.pdf"
  "$start" "members.$language" "$samples/hosts/members.$language" "$folder/files/contacts.mdb" "$folder/files/photo.jpg" "$out"
  said=$(sed 's/ *$//' "$folder/members.$language.log")
  [ "$said" = "settings: Title Runs
picture: 40 mm high
members.pdf: 3 members
done" ] || fail "members.$language says: $said"
done
run hello.cpp "$wine" "$program" "$(windows_path "$folder/files/cpp.pdf")"
page vbs "Hello from VBScript"
page js "Hello from JScript"
page py "Hello from Python"
page cpp "Hello from C++"

# Sorted, so that the recipe that adds records runs after the one that prints them. Wine's script host lacks LoadPicture.
for sample in "$samples"/cookbook/*.vbs "$samples"/classes/*.vbs; do
  name=$(basename "$sample")
  [ "$name" = png.vbs ] || script "$name" "$sample" "$folder/files"
done
xmllint --noout "$folder/files/track.kml" "$folder/files/place.kml" || fail "a KML file is not well-formed"
"$python" "$here/page_examples.py" scripts "$folder" "$(windows_path "$folder/files")"
"$python" "$root/scripts/make_reference.py" --examples "$(windows_path "$folder/files")" >"$folder/reference.vbs"
for sample in "$folder"/*.vbs "$folder"/*.js; do script "$(basename "$sample")" "$sample"; done
for sample in "$folder"/*.py; do TMPDIR="$folder/files" run_python "$(basename "$sample")" "$sample"; done
"$python" "$here/page_examples.py" compare "$folder" || fail "examples do not print what their pages say"

grep -q 'OpenDB.*missing\.mdb' "$folder/trace.txt" || fail "the trace does not say why a database did not open"

[ "$failures" -eq 0 ]
