#!/usr/bin/env bash
# Runs a Windows program under Wine in the project's private prefix (made on first use below build/).
#   scripts/wine.sh program.exe [argument ...]
#   scripts/wine.sh --prepare        only makes the prefix
set -eu
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$root/build/wine}
export WINEDEBUG=${WINEDEBUG:--all}
# Neither .NET nor a browser engine is wanted: without this Wine offers to download them.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree=;mshtml=}
# Under Wine the locale decides the code page, the language and how names of files are written. In that of a machine
# where nobody chose one, no file may have an accent in its name.
export LC_ALL=C.UTF-8
unset DISPLAY
if [ ! -e "$WINEPREFIX/.ready" ]; then
  mkdir -p "$WINEPREFIX"
  # Two tests may start at once: only one makes the prefix.
  (
    flock 9
    if [ ! -e "$WINEPREFIX/.ready" ]; then
      wineboot -i >/dev/null 2>&1
      wineserver -w
      touch "$WINEPREFIX/.ready"
    fi
  ) 9>"$WINEPREFIX.lock"
fi
[ "${1:-}" != --prepare ] || exit 0
exec wine "$@"
