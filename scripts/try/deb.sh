# The Debian package: unpacked anywhere, then installed on this machine and removed again. Read by try-package.sh after
# archive.sh, whose program it builds.

# as_root COMMAND ...
as_root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo -n "$@"; fi; }

# paths: the files and folders of the package that exist on this machine.
paths() {
  dpkg-deb --fsys-tarfile "$deb" | tar -tf - | sed 's|^\./|/|; s|/$||' | while read -r path; do
    [ ! -e "$path" ] || echo "$path"
  done
}

try_installed() {
  local before status
  before=$(paths)
  as_root dpkg -i "$deb" >"$work/dpkg.log" 2>&1 && status=0 || status=$?
  expect "dpkg -i answers" 0 "$status"
  expect "files that dpkg finds changed" "" "$(dpkg --verify veltranoframework)"
  expect "installed: veltrano --version says" "veltrano $version" "$(/usr/bin/veltrano --version)"
  expect "installed: doctor finds" "nothing wrong" \
    "$(/usr/bin/veltrano doctor >"$work/doctor-deb.log" && echo "nothing wrong" || echo "faults, see $work/doctor-deb.log")"
  by_find_package deb-installed-cmake "" "installed: by find_package"
  by_pkg_config deb-installed-pkgconfig "" "installed: by pkg-config"
  as_root dpkg --purge veltranoframework >>"$work/dpkg.log" 2>&1 && status=0 || status=$?
  expect "dpkg --purge answers" 0 "$status"
  expect "files and folders left" "" "$(comm -13 <(sort <<<"$before") <(paths | sort))"
  expect "what dpkg knows of it" "nothing" "$(dpkg-query -W veltranoframework 2>/dev/null || echo nothing)"
}

echo "The Debian package, $(basename "$deb")"
expect "its name and version" "veltranoframework $version" "$(dpkg-deb -f "$deb" Package) $(dpkg-deb -f "$deb" Version)"
saw "depends on" "$(dpkg-deb -f "$deb" Depends)"
expect "libraries that the program needs and it does not depend on" "" "$(dpkg-deb -x "$deb" "$work/deb" &&
  readelf -d "$work/deb/usr/bin/veltrano" | sed -nE 's/.*NEEDED.*\[lib(png|jpeg|expat|pugixml|mbedcrypto).*/\1/p' |
  while read -r library; do dpkg-deb -f "$deb" Depends | grep -q "lib$library" || echo "$library"; done)"
expect "files that do not belong to root, or that others may write" "" \
  "$(dpkg-deb -c "$deb" | awk '$2 != "root/root" || substr($1, 9, 1) == "w"' | head -n 3)"
texts "$work/deb/usr/share/doc/veltranoframework" copyright changelog.gz CHANGELOG.md.gz manual/index.html samples/contacts.mdb
texts "$work/deb/usr/share/man/man1" veltrano.1.gz
by_find_package deb-cmake "$work/deb/usr" "unpacked anywhere: by find_package"
plain=$(mktemp -d)
cp -r "$work/deb/usr" "$plain/"
by_pkg_config deb-pkgconfig "$plain/usr/lib/pkgconfig" "unpacked anywhere: by pkg-config"
rm -rf "$plain"
if dpkg-query -W veltranoframework >/dev/null 2>&1; then
  saw "installing it on this machine" "not tried: one is installed"
elif ! as_root true 2>/dev/null; then
  saw "installing it on this machine" "not tried: needs root"
else
  try_installed
fi
