#!/usr/bin/env bash
# Runs a Windows program under Wine in the project's private prefix (made on first use below build/).
#   scripts/wine.sh program.exe [argument ...]
set -eu
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$root/build/wine}
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree=;mshtml=}
if [ ! -e "$WINEPREFIX/system.reg" ]; then
  mkdir -p "$WINEPREFIX"
  # Two tests may start at once: only one makes the prefix.
  (
    flock 9
    [ -e "$WINEPREFIX/system.reg" ] || wineboot -i >/dev/null 2>&1
    wineserver -w
  ) 9>"$WINEPREFIX.lock"
fi
exec wine "$@"
