#!/usr/bin/env bash
# The DLL needs nothing but Windows, offers what a host asks for, and is hardened.
#   check_dll.sh DLL OBJDUMP POINTER_SIZE
set -eu
said=$("$2" -p "$1")
needs=$(sed -n 's/.*DLL Name: \(.*\)\.dll/\L\1/Ip' <<<"$said" |
  grep -vxE 'advapi32|gdi32|kernel32|msvcrt|ole32|oleaut32|shell32|shlwapi|user32|version' | xargs)
offers=$(sed -n '/Ordinal\/Name Pointer/,/^$/s/.*[0-9]\] //p' <<<"$said" | xargs)
protections=$(grep -cxE '[[:space:]]*(HIGH_ENTROPY_VA|DYNAMIC_BASE|NX_COMPAT)' <<<"$said")
found="besides Windows it needs: $needs; it offers: $offers; protections: $protections"
echo "$found"
[ "$found" = "besides Windows it needs: ; it offers: DllCanUnloadNow DllGetClassObject DllInstall DllRegisterServer \
DllUnregisterServer; protections: $(($3 / 4 + 1))" ]
