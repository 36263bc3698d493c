#!/usr/bin/env bash
# Makes an installer package.
#   packaging/windows/make_installer.sh x86|x64 VERSION FOLDER FILE        FOLDER is the unpacked zip for Windows
set -eu
source=$(mktemp --suffix=.wxs)
trap 'rm -f "$source"' EXIT
file=$(realpath -m "$4")
python3 "$(dirname "${BASH_SOURCE[0]}")/make_installer_source.py" "$1" "$2" "$3" >"$source"
# The source names its files relative to this folder.
(cd "$3" && wixl --arch "$1" -o "$file" "$source")
# Of a package that is started with windows, only these properties reach the part that runs as administrator.
secure=$(sed -nE 's/.*<Property Id="PREVIOUS(\w+)".*/;\1;PREVIOUS\1/p' "$source" | tr -d '\n')
msibuild "$file" -q "UPDATE \`Property\` SET \`Value\` = 'WIX_DOWNGRADE_DETECTED;WIX_UPGRADE_DETECTED$secure' \
  WHERE \`Property\` = 'SecureCustomProperties'"
# wixl ignores the package code of the source and takes a random one.
random=$(msiinfo suminfo "$file" | sed -n 's/^Revision number (UUID): //p')
code=$(sed -n 's/.*<Package Id="\([^"]*\)".*/\1/p' "$source")
LC_ALL=C sed -i "s/$random/$code/" "$file"
