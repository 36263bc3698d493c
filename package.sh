#!/usr/bin/env bash
# Makes the packages in out/ and tries them: a zip and installers for Windows, an archive of the portable library for
# Linux. Installs what is missing first.
#   ./package.sh              makes and tries
#   ./package.sh --no-try     only makes
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

scripts/build.sh native VeltranoFrameWork make_contacts
scripts/build.sh win32 VeltranoFrameWorkDLL veltrano_metrics
scripts/build.sh win64 VeltranoFrameWorkDLL veltrano_metrics

version=$(sed -nE 's/^project\(VeltranoFrameWorkDLL VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
machine=$(uname -m)
windows="VeltranoFrameWork-$version-windows"
linux="VeltranoFrameWork-$version-linux-$machine"
stage=build/package
rm -rf "$stage" out
mkdir -p "$stage/$windows" "$stage/$linux" out

# What the packages hold carries the time of the last commit, so that the same sources make the same packages.
epoch=$(git log -1 --format=%ct 2>/dev/null || date +%s)

fill() { sed "s/@version@/$version/g; s/@machine@/$machine/g" "$1"; }

# The pages that users read: neither the notes that the reference is made from nor anything for contributors.
documentation() {
  mkdir -p "$1/reference"
  cp docs/*.md "$1/"
  cp docs/reference/*.md "$1/reference/"
}

samples() {
  cp -r samples "$1/samples"
  find "$1/samples" -name CMakeLists.txt -delete
}

# The database that contacts.vbs works on holds the time of its creation: that of the last commit, too.
contacts() {
  TZ=UTC faketime -f "$(date -u -d "@$epoch" '+%Y-%m-%d %H:%M:%S')" build/native/samples/make_contacts "$1/contacts.mdb"
}

# What NOTICE names.
apache_license() { cp -L /usr/share/common-licenses/Apache-2.0 "$1/Apache-2.0.txt"; }

for_windows() { sed 's/\r*$/\r/' "$1"; }

# The texts of what is linked into the DLLs, as Debian ships them with the very sources and libraries that were used.
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
pugixml libpugixml-dev
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
documentation "$top/docs"
samples "$top"
contacts "$top/samples"
# Visual Basic's editor reads nothing else.
for_windows samples/hosts/hello.bas >"$top/samples/hosts/hello.bas"
find "$stage" -exec touch -h -d "@$epoch" {} +
# Without -r: the order of the names is then ours.
(cd "$stage" && find "$windows" -type f | LC_ALL=C sort | zip -q -X -9 -@ "../../out/$windows.zip")

for architecture in x64 x86; do
  echo "Packing VeltranoFrameWork-$version-$architecture.msi"
  python3 packaging/windows/make_installer_source.py "$architecture" "$version" "$top" >"$stage/$architecture.wxs"
  # Its files are named relative to their folder.
  (cd "$top" && wixl --arch "$architecture" -o "../../../out/VeltranoFrameWork-$version-$architecture.msi" \
    "../$architecture.wxs")
done

echo "Packing $linux.tar.gz"
top="$stage/$linux"
cmake --install build/native --prefix "$top" --component linux >"$stage/install.log"
fill packaging/linux/README.in >"$top/README"
own="$top/share/doc/veltranoframework"
mkdir -p "$own"
cp LICENSE NOTICE CHANGELOG.md "$own/"
apache_license "$own"
documentation "$own/docs"
samples "$own"
tar -C "$stage" --sort=name --mtime="@$epoch" --owner=0 --group=0 --numeric-owner -cf - "$linux" | gzip -n9 >"out/$linux.tar.gz"

ls -l out | awk 'NR > 1 { printf "  %9d  out/%s\n", $5, $9 }'
if $try; then
  scripts/try-package.sh
fi
