#!/usr/bin/env bash
# Registers the DLL in a Wine prefix of its own and runs what a reader of the documentation would run: the samples of each
# language that Wine has a host for, and every example of the pages.
#   run_hosts.sh DLL HELLO.exe BRIDGE.exe MAKE_CONTACTS.exe FOLDER POINTER_SIZE PYTHON
# Script hosts end with 0 whatever happens, so each run must say "done" as its last line and leave its files behind.
set -eu
dll=$1 program=$2 bridge=$3 makeContacts=$4 folder=$5 pointer_size=$6 python=$7
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
samples="$root/samples"
files="$folder/files"
system=system32
[ "$pointer_size" -eq 8 ] || system=syswow64

rm -rf "$folder"
mkdir -p "$files"
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

# run NAME PROGRAM ARGUMENT ...: keeps what it says in NAME.log.
run() {
  local name=$1 program=("$wine" "$2") arguments=("${@:3}")
  if [ "$2" = "$python" ]; then
    program=("$2")
  else
    [[ $2 != */cscript.exe ]] || program+=(//nologo)
    arguments=("${arguments[@]//\//\\}")
    arguments=("${arguments[@]/#/Z:}")
  fi
  "${program[@]}" "${arguments[@]}" 2>"$folder/$name.err" | tr -d '\r' >"$folder/$name.log" || true
  [ "$(tail -n 1 "$folder/$name.log")" = "done" ] ||
    fail "$name came no further than: $(tail -n 2 "$folder/$name.log") $(tail -n 1 "$folder/$name.err")"
}

# The loader may be a 32-bit one, to which system32 is syswow64: a copy of the host elsewhere is what it is.
host="$folder/cscript.exe"
cp "$WINEPREFIX/drive_c/windows/$system/cscript.exe" "$host"

# Without registration: all files beside the program, with the manifest that the page on C++ shows. The prefix is that of an
# earlier run, perhaps.
register=("$wine" "C:\\windows\\$system\\regsvr32.exe" /s "$(windows_path "$dll")")
"${register[@]}" /u
"$wine" "$program" "$(windows_path "$files/cpp.pdf")" >/dev/null 2>&1 && fail "the class is registered still"
beside="$folder/beside"
mkdir "$beside"
cp "$(dirname "$dll")"/*.afm "$(dirname "$dll")"/*.manifest "$dll" "$program" "$beside/"
sed -n '/<!-- manifest -->/,/^```$/p' "$root/docs/hosts/cpp.md" | sed '1,2d;$d' >"$beside/$(basename "$program").manifest"
run unregistered "$beside/$(basename "$program")" "$files/unregistered.pdf"

"${register[@]}" || fail "the DLL cannot be registered"

VELTRANO_TRACE=$(windows_path "$folder/trace.txt")
# TMPDIR, which the examples want, would make Wine start another server with an older registry.
export VELTRANO_TRACE VELTRANO_BRIDGE="env|-u|TMPDIR|$wine|$bridge" PYTHONPATH="$here/pywin32" PYTHONDONTWRITEBYTECODE=1
# The samples' database and photo, for the members' lists, the recipes and the examples of the pages.
cp "$samples/photo.jpg" "$files/"
"$wine" "$makeContacts" "$(windows_path "$files/contacts.mdb")"

run hello.cpp "$program" "$files/cpp.pdf"
declare -A with=([vbs]=$host [js]=$host [py]=$python)
for language in vbs js py; do
  mkdir "$files/$language"
  run "hello.$language" "${with[$language]}" "$samples/hosts/hello.$language" "$files/$language.pdf"
  run "members.$language" "${with[$language]}" "$samples/hosts/members.$language" "$files/contacts.mdb" "$files/photo.jpg" "$files/$language"
  sed 's/ *$//' "$folder/members.$language.log" | cmp - <(printf '%s\n' "settings: Title Runs" "picture: 40 mm high" \
    "members.pdf: 3 members" "done") || fail "members.$language says something else"
done
for file in cpp vbs js py; do
  pdftotext "$files/$file.pdf" - | grep -q '^Hello from ' || fail "$file.pdf does not show its greeting"
done

# Sorted, so that the recipe that adds records runs after the one that prints them. Wine's script host lacks LoadPicture.
for sample in "$samples"/cookbook/*.vbs "$samples"/classes/*.vbs; do
  name=$(basename "$sample")
  [ "$name" = png.vbs ] || run "$name" "$host" "$sample" "$files"
done
xmllint --noout "$files/track.kml" "$files/place.kml" || fail "a KML file is not well-formed"
"$python" "$here/page_examples.py" scripts "$folder" "$(windows_path "$files")"
"$python" "$root/scripts/make_reference.py" --examples "$(windows_path "$files")" >"$folder/reference.vbs"
for sample in "$folder"/*.vbs "$folder"/*.js; do run "$(basename "$sample")" "$host" "$sample"; done
for sample in "$folder"/*.py; do TMPDIR="$files" run "$(basename "$sample")" "$python" "$sample"; done
"$python" "$here/page_examples.py" compare "$folder" || fail "examples do not print what their pages say"

grep -q 'OpenDB.*missing\.mdb' "$folder/trace.txt" || fail "the trace does not say why a database did not open"

[ "$failures" -eq 0 ]
