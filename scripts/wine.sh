#!/usr/bin/env bash
# Runs a Windows program under Wine in the project's private prefix (created in build/ at the first use).
#   scripts/wine.sh program.exe [argument ...]
#   scripts/wine.sh --prepare        only creates the prefix
set -eu
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$root/build/wine}
export WINEDEBUG=${WINEDEBUG:--all}
# Without this Wine offers to download .NET and a browser engine, which are not needed, and an installer that is tried enters its
# programs in the menus of the user's desktop.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree=;mshtml=;winemenubuilder.exe=}
# Under Wine the locale determines the code page, the language and the encoding of file names. Without UTF-8 no file name
# could have an accent.
export LC_ALL=C.UTF-8
unset DISPLAY
if [ ! -e "$WINEPREFIX/.ready" ]; then
  mkdir -p "$WINEPREFIX"
  # Two tests may start at once, but only one creates the prefix.
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
