# What the checks of the packages share. Read by try-package.sh.

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

# All files of the drive, except the copies of the installer service.
files() { (cd "$WINEPREFIX/drive_c" && find . ! -path ./windows/Installer ! -path './windows/temp/*' | LC_ALL=C sort); }

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
