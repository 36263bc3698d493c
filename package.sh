#!/usr/bin/env bash
# Makes the packages in out/ and tries them: a zip and installers for Windows, an archive of the portable library for
# Linux. First installs the Debian packages that it needs.
#   ./package.sh              makes and tries them
#   ./package.sh --no-try     only makes them
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")"

try=true
case "${1:-}" in
  --no-try) try=false ;;
  "") ;;
  *) echo "usage: ./package.sh [--no-try]" >&2; exit 2 ;;
esac

if ! scripts/install-packages.sh native windows packages; then
  echo "package.sh: the packages that building needs cannot be installed here" >&2
  exit 1
fi
scripts/build-windows-libraries.sh

scripts/build.sh native VeltranoFrameWork make_contacts veltrano_program
scripts/build.sh win32 VeltranoFrameWorkDLL veltrano_metrics veltrano_program
scripts/build.sh win64 VeltranoFrameWorkDLL veltrano_metrics veltrano_program

version=$(sed -nE 's/^project\(VeltranoFrameWorkDLL VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
machine=$(uname -m)
windows="VeltranoFrameWork-$version-windows"
linux="VeltranoFrameWork-$version-linux-$machine"
stage=build/package
rm -rf "$stage" out
mkdir -p "$stage/$windows" "$stage/$linux" out

# All files in the packages have the time of the last commit, so that the same sources make the same packages.
epoch=$(git log -1 --format=%ct 2>/dev/null || date +%s)

fill() { sed "s/@version@/$version/g; s/@machine@/$machine/g" "$1"; }

# The manual, the same for the same sources: fixed order of everything, no traces of the build.
manual() {
  PYTHONHASHSEED=0 PYTHONDONTWRITEBYTECODE=1 SOURCE_DATE_EPOCH=$epoch \
    sphinx-build -q -E -W -d "$stage/doctrees" -b html docs "$1/manual"
  rm "$1/manual/.buildinfo" "$1/manual/objects.inv"
  # Of the scripts and styles in it.
  mkdir "$1/manual/licenses"
  local package
  for package in sphinx-common sphinx-basic-ng furo libjs-jquery libjs-underscore; do
    cp -L "/usr/share/doc/$package/copyright" "$1/manual/licenses/$package.txt"
  done
}

stubs() { PYTHONDONTWRITEBYTECODE=1 python3 scripts/make_stubs.py "$1/stubs"; }

samples() {
  cp -r samples "$1/samples"
  find "$1/samples" -name CMakeLists.txt -delete
  # They need headers that are not installed.
  rm "$1/samples/make_photo.cpp" "$1/samples/make_contacts.cpp"
}

# The database for contacts.vbs, created at the time of the last commit as well.
contacts() {
  TZ=UTC faketime -f "$(date -u -d "@$epoch" '+%Y-%m-%d %H:%M:%S')" build/native/samples/make_contacts "$1/contacts.mdb"
}

# The licence that NOTICE names.
apache_license() { cp -L /usr/share/common-licenses/Apache-2.0 "$1/Apache-2.0.txt"; }

for_windows() { sed 's/\r*$/\r/' "$1"; }

# The licences of the libraries linked into the DLLs, from the Debian packages that were used.
licenses() {
  local name package
  mkdir -p "$1"
  while read -r name package; do
    cp -L "/usr/share/doc/$package/copyright" "$1/$name.txt"
    printf '%s.txt: %s %s\r\n' "$name" "$package" "$(dpkg-query -W -f '${Version}' "$package")" >>"$1/README.txt"
  done <<'TEXTS'
libpng libpng-dev
zlib libz-mingw-w64-dev
libjpeg-turbo libjpeg62-turbo-dev
expat libexpat1-dev
pugixml libpugixml-dev
mbedtls libmbedtls-dev
cli11 libcli11-dev
gcc-runtime gcc-mingw-w64-base
mingw-w64-runtime mingw-w64-common
TEXTS
}

echo "Packing $windows.zip"
top="$stage/$windows"
for target in 32:x86 64:x64; do
  cmake --install "build/win${target%:*}" --prefix "$top/${target#*:}" --component windows >"$stage/install.log"
done
fill packaging/windows/README.txt.in | for_windows - >"$top/README.txt"
for text in LICENSE NOTICE CHANGELOG.md; do for_windows "$text" >"$top/${text%.md}.txt"; done
licenses "$top/licenses"
apache_license "$top/licenses"
manual "$top"
stubs "$top"
samples "$top"
contacts "$top/samples"
# Windows editors want CR LF, and Visual Basic's needs it. Data stay as they are.
find "$top/samples" "$top/stubs" -type f ! -name '*.mdb' ! -name '*.jpg' ! -name '*.gpx' ! -name '*.csv' -exec sed -i 's/\r*$/\r/' {} +
find "$stage" -exec touch -h -d "@$epoch" {} +
# A sorted list instead of -r, whose order depends on the file system.
(cd "$stage" && find "$windows" -type f | LC_ALL=C sort | zip -q -X -9 -@ "../../out/$windows.zip")

for architecture in x64 x86; do
  echo "Packing VeltranoFrameWork-$version-$architecture.msi"
  python3 packaging/windows/make_installer_source.py "$architecture" "$version" "$top" >"$stage/$architecture.wxs"
  # The source names its files relative to this folder.
  (cd "$top" && wixl --arch "$architecture" -o "../../../out/VeltranoFrameWork-$version-$architecture.msi" \
    "../$architecture.wxs")
done

echo "Packing $linux.tar.gz"
top="$stage/$linux"
cmake --install build/native --prefix "$top" --component linux >"$stage/install.log"
mkdir -p "$top/share/man/man1"
help2man -N --help-option=--help-all -n "documents, Access databases and the state of an installation" "$top/bin/veltrano" |
  gzip -n9 >"$top/share/man/man1/veltrano.1.gz"
fill packaging/linux/README.in >"$top/README"
own="$top/share/doc/veltranoframework"
mkdir -p "$own"
cp LICENSE NOTICE CHANGELOG.md "$own/"
apache_license "$own"
# Of the program.
cp -L /usr/share/doc/libcli11-dev/copyright "$own/CLI11.txt"
manual "$own"
stubs "$own"
samples "$own"
contacts "$own/samples"
tar -C "$stage" --sort=name --mtime="@$epoch" --owner=0 --group=0 --numeric-owner -cf - "$linux" | gzip -n9 >"out/$linux.tar.gz"

(cd out && sha256sum -- * >SHA256SUMS)
ls -l out | awk 'NR > 1 { printf "  %9d  out/%s\n", $5, $9 }'
if $try; then
  scripts/try-package.sh
fi
