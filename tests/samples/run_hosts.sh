#!/usr/bin/env bash
# Registers the DLL in a Wine prefix of its own and runs what a reader of the documentation would run: the sample of
# each language that Wine has a host for, and every example of the reference pages.
#   run_hosts.sh DLL HELLO.exe FOLDER POINTER_SIZE PYTHON
# Script hosts end with 0 whatever happens, so each run must say "done" as its last line and leave its page behind.
set -eu
dll=$1 program=$2 folder=$3 pointer_size=$4 python=$5
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
system=system32
[ "$pointer_size" -eq 8 ] || system=syswow64

rm -rf "$folder"
mkdir -p "$folder/files"
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

# run NAME COMMAND ...
run() {
  local name=$1
  shift
  "$wine" "$@" 2>"$folder/$name.err" | tr -d '\r' >"$folder/$name.log" || true
  [ "$(tail -n 1 "$folder/$name.log")" = done ] || fail "$name came no further than: $(tail -n 2 "$folder/$name.log")"
}

# greets NAME TEXT
greets() {
  local text
  text=$(pdftotext "$folder/files/$1.pdf" - 2>/dev/null | head -n 1) || true
  [ "$text" = "$2" ] || fail "$1.pdf shows '$text' instead of '$2'"
}

# The loader may be a 32-bit one, to which system32 is syswow64: a copy of the host elsewhere is what it is.
host="$folder/cscript.exe"
cp "$WINEPREFIX/drive_c/windows/$system/cscript.exe" "$host"

"$wine" "C:\\windows\\$system\\regsvr32.exe" /s "$(windows_path "$dll")" || fail "the DLL cannot be registered"

for language in vbs js; do
  run "hello.$language" "$host" //nologo "$(windows_path "$root/samples/hosts/hello.$language")" \
    "$(windows_path "$folder/files/$language.pdf")"
done
run hello.cpp "$program" "$(windows_path "$folder/files/cpp.pdf")"
greets vbs "Hello from VBScript"
greets js "Hello from JScript"
greets cpp "Hello from C++"

# What the examples read: a photo, and a settings file that one of them writes.
[ ! -e "$root/samples/photo.jpg" ] || cp "$root/samples/photo.jpg" "$folder/files/"
mkdir "$folder/files/metrics"
"$python" "$root/scripts/make_reference.py" --examples "$(windows_path "$folder/files")" >"$folder/examples.vbs"
run examples "$host" //nologo "$(windows_path "$folder/examples.vbs")"

[ "$failures" -eq 0 ]
