#!/usr/bin/env bash
# Tries the packages in out/ as their users would and reports the results: the zip and the installers under Wine, the
# archive and the Debian package with CMake and with pkg-config. Needs what package.sh installs. Exits 1 if anything is wrong.
set -eu
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
work="$root/build/try package"
rm -rf "$work"
mkdir -p "$work"
wine="$root/scripts/wine.sh"
failures=0
. scripts/try/common.sh

zip=$(one 'VeltranoFrameWork-*-windows.zip')
x64=$(one 'VeltranoFrameWork-*-x64.msi')
x86=$(one 'VeltranoFrameWork-*-x86.msi')
tar=$(one 'VeltranoFrameWork-*-linux-*.tar.gz')
deb=$(one 'veltranoframework_*.deb')
symbols=$(one 'VeltranoFrameWork-*-symbols.zip')
version=$(basename "$zip" | cut -d - -f 2)

# Stops all Wine processes. The folder is large and is kept only after a failure, for debugging.
end() {
  local prefix
  for prefix in "$work"/prefix*/; do WINEPREFIX=${prefix%/} wineserver -k 2>/dev/null || true; done
  [ "$1" -ne 0 ] || rm -rf "$work"
}
trap 'end $?' EXIT

# In this order: the later ones use what the earlier ones have unpacked or seen.
for part in zip installers archive deb symbols publishing; do
  . "scripts/try/$part.sh"
done

if [ "$failures" -gt 0 ]; then
  echo "try-package: $failures checks failed" >&2
  exit 1
fi
echo "The packages work."
