# The installers under Wine. Read by try-package.sh after zip.sh, whose registration they are compared with.

# The registration added between two states of the registry, with the path of the DLL reduced to its name; without the list
# of installed programs and the folder of a help file that does not exist.
additions() {
  LC_ALL=C comm -13 "$1" "$2" | grep -E '^\[Software\\\\Classes' | grep -v 'HELPDIR' |
    sed -E 's/"[^"]*\\\\(VeltranoFrameWorkDLL\.dll)"/"\1"/'
}

# install ARGUMENT ...: runs msiexec unattended and prints its exit code, which the shell's own would cut to 8 bits.
install() {
  printf '@msiexec %%* /qn\r\n@echo code %%errorlevel%%\r\n' >"$WINEPREFIX/drive_c/windows/temp/install.cmd"
  "$wine" cmd /c 'C:\windows\temp\install.cmd' "$@" 2>/dev/null | tr -d '\r' | sed -n 's/^code //p'
}

# entry STATE NAME: a value of the entry in the list of installed programs.
entry() { sed -nE 's/^\[.*\\\\Uninstall\\\\\{[^]]*\] "'"$2"'"=(.*)$/\1/p' "$1"; }

# state NAME: the registry and the files as they are.
state() {
  registry >"$work/$1.registry"
  files >"$work/$1.files"
}

# unchanged LABEL STATE STATE
unchanged() {
  same "$1: the registry" "the same" "$work/$2.registry" "$work/$3.registry"
  same "$1: files and folders" "the same" "$work/$2.files" "$work/$3.files"
}

# try_installer NAME FILE ARCHITECTURE ...
try_installer() {
  local name=$1 file=$2 architecture
  shift 2
  state "$name-before"
  expect "msiexec /i answers" 0 "$(install /i "$(windows_path "$file")")"
  expect "DLLs installed" "$#" "$(find "$WINEPREFIX/drive_c" -name VeltranoFrameWorkDLL.dll | wc -l)"
  texts "$WINEPREFIX/drive_c/Program Files/VeltranoFrameWork" LICENSE.txt NOTICE.txt CHANGELOG.txt licenses/Apache-2.0.txt
  expect "the Start menu has the manual" "yes" \
    "$(find "$WINEPREFIX/drive_c" -name 'Veltrano FrameWork manual.lnk' | grep -q . && echo yes || echo no)"
  for architecture in "$@"; do
    script "${architecture/x64/AMD64}" 'C:\Program Files\VeltranoFrameWork\samples' "$architecture by the installer"
  done
  state "$name-registered"
  listed "$work/$name-registered.registry" "$version" 'C:\\Program Files\\VeltranoFrameWork\\'
  if [ $# -eq 2 ]; then
    additions "$work/zip-before" "$work/zip-registered" >"$work/by-regsvr32"
    additions "$work/$name-before.registry" "$work/$name-registered.registry" >"$work/by-installer"
    same "registered in $(wc -l <"$work/by-installer") lines" "as by regsvr32" "$work/by-regsvr32" "$work/by-installer"
  fi
  expect "msiexec /x answers" 0 "$(install /x "$(windows_path "$file")")"
  state "$name-after"
  unchanged "after the removal" "$name-before" "$name-after"
}

# listed REGISTRY VERSION FOLDER: the entry in the list of installed programs is complete.
listed() {
  local expected="\"Veltrano FrameWork\" \"$2\" \"VELTRANO Software Technologies\" \"$3\" \"file:///$3manual\\\\index.html\" \"$3README.txt\""
  expect "the entry of $2 in the installed programs" "$expected" \
    "$(for value in DisplayName DisplayVersion Publisher InstallLocation HelpLink ReadMe; do entry "$1" $value; done | paste -sd ' ')"
}

# try_life NAME FILE ARCHITECTURE: into folders of the administrator's choice, then repaired, upgraded, not downgraded, removed.
try_life() {
  local name=$1 file=$2 installed="$WINEPREFIX/drive_c/Veltrano tools" newer="$work/newer-$1.msi" newer_code
  "$root/packaging/windows/make_installer.sh" "$1" 9.0.0 "$folder" "$newer"
  newer_code=$(msiinfo export "$newer" Property | tr -d '\r' | sed -n 's/^ProductCode\t//p')
  expect "with folders and a log: msiexec /i answers" 0 "$(install /i "$(windows_path "$file")" /l*v 'C:\windows\temp\install.log' \
    'INSTALLDIR=C:\Veltrano tools' 'INSTALLDIR32=C:\Veltrano tools 32')"
  expect "the log names the last action" "yes" \
    "$(grep -qa 'InstallFinalize' "$WINEPREFIX/drive_c/windows/temp/install.log" && echo yes || echo no)"
  expect "DLLs in these folders" "$3" "$(find "$WINEPREFIX/drive_c"/Veltrano\ tools* -name VeltranoFrameWorkDLL.dll | wc -l)"
  state "$name-chosen"
  listed "$work/$name-chosen.registry" "$version" 'C:\\Veltrano tools\\'

  rm "$installed/$name/Symbol.afm"
  echo broken >"$installed/README.txt"
  "$wine" reg delete 'HKLM\Software\Classes\VeltranoFrameWorkDLL.VeltranoPDF\CLSID' /f >/dev/null 2>&1
  expect "a repair answers" 0 "$(install /i "$(windows_path "$file")" REINSTALL=ALL REINSTALLMODE=amus)"
  state "$name-repaired"
  unchanged "after the repair" "$name-chosen" "$name-repaired"
  expect "a file that was changed is" "as packed" \
    "$(cmp -s "$installed/README.txt" "$folder/README.txt" && echo "as packed" || echo "another")"

  expect "an upgrade answers" 0 "$(install /i "$(windows_path "$newer")")"
  state "$name-upgraded"
  expect "after the upgrade: files and folders, except the installer's copy" "" \
    "$(diff "$work/$name-chosen.files" "$work/$name-upgraded.files" | grep '^[<>]' | grep -v ' ./windows/Installer/' | head -n 3)"
  listed "$work/$name-upgraded.registry" 9.0.0 'C:\\Veltrano tools\\'
  expect "a downgrade answers" 1603 "$(install /i "$(windows_path "$file")")"
  state "$name-downgraded"
  unchanged "after the refused downgrade" "$name-upgraded" "$name-downgraded"

  expect "a removal by the product code answers" 0 "$(install /x "$newer_code")"
  state "$name-gone"
  unchanged "after that removal" "$name-before" "$name-gone"
  expect "a second removal answers" 1605 "$(install /x "$newer_code")"
}

echo "The installer for 64-bit Windows, $(basename "$x64")"
use_prefix x64
try_installer x64 "$x64" x64 x86
try_life x64 "$x64" 2
expect "the x86 package on 64-bit Windows answers" 1603 "$(install /i "$(windows_path "$x86")")"

echo "The installer for 32-bit Windows, $(basename "$x86")"
use_prefix x86 win32
try_installer x86 "$x86" x86
try_life x86 "$x86" 1
expect "the x64 package on 32-bit Windows" "refused" "$([ "$(install /i "$(windows_path "$x64")")" = 0 ] && echo "taken" || echo "refused")"
unset WINEARCH
