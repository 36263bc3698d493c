# The packages for Linux. Read by pack.sh, which sets the variables.

linux="VeltranoFrameWork-$version-linux-$machine"
own=share/doc/veltranoframework

pack_archive() {
  local top="$stage/$linux" symbols="$stage/VeltranoFrameWork-$version-symbols/linux-$machine"
  echo "Packing $linux.tar.gz"
  mkdir -p "$top/share/man/man1" "$top/$own" "$symbols"
  cmake --install build/native-package --prefix "$top" --component linux >"$stage/install.log"
  split_symbols "" "$top/bin/veltrano" "$symbols"
  # A static library has nothing that leads a debugger to symbols elsewhere: the whole one is linked in its place.
  cp "$top/lib/libveltranoframework.a" "$symbols/"
  strip --strip-debug --enable-deterministic-archives "$top/lib/libveltranoframework.a"
  # It cannot run a program whose path has a blank.
  (cd "$top/bin" && help2man -N --help-option=--help-all -n "documents, Access databases and the state of an installation" \
    -o ../share/man/man1/veltrano.1 ./veltrano)
  gzip -n9 "$top/share/man/man1/veltrano.1"
  fill packaging/linux/README.in >"$top/README"
  cp LICENSE NOTICE CHANGELOG.md "$top/$own/"
  apache_license "$top/$own"
  # Of the program.
  cp -L /usr/share/doc/libcli11-dev/copyright "$top/$own/CLI11.txt"
  manual "$top/$own"
  stubs "$top/$own"
  samples "$top/$own"
  contacts "$top/$own/samples"
  tar -C "$stage" --sort=name --mtime="@$epoch" --owner=0 --group=0 --numeric-owner -cf - "$linux" | gzip -n9 >"$out/$linux.tar.gz"
}

# indented FILE: as the text of a field of a Debian control file.
indented() { sed -E 's/[[:space:]]+$//; s/^$/./; s/^/ /' "$1"; }

# The licences in Debian's form.
copyright() {
  local holder
  holder=$(sed -n 's/^Copyright (c) //p' LICENSE)
  cat <<FIELDS
Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: VeltranoFrameWork
Comment:
$(indented NOTICE)

Files: *
Copyright: $holder
License: Expat
$(sed 1,4d LICENSE | indented -)

Files: share/veltranoframework/metrics/*
Copyright: Adobe Systems Incorporated
License: APAFML
$(indented data/metrics/NOTICE.txt)

License: Apache-2.0
 The text is in /usr/share/common-licenses/Apache-2.0.

$(sed -n '/^License: BSD-3-clause$/,$p' /usr/share/doc/libcli11-dev/copyright | tac | sed '/^License: BSD-3-clause$/q' | tac)
FIELDS
}

# The files of the archive as Debian wants them, packed by CPack.
pack_deb() {
  local top="$stage/deb" name="veltranoframework_${version}_$(dpkg --print-architecture).deb"
  echo "Packing $name"
  cp -r "$stage/$linux" "$top"
  rm "$top/README"
  (cd "$top/$own" && rm LICENSE NOTICE Apache-2.0.txt CLI11.txt && gzip -n9 CHANGELOG.md)
  copyright >"$top/$own/copyright"
  printf 'veltranoframework (%s) unstable; urgency=medium\n\n  * See CHANGELOG.md.gz.\n\n -- %s  %s\n' "$version" "$maintainer" \
    "$(date -R -d "@$epoch")" | gzip -n9 >"$top/$own/changelog.gz"
  find "$top" -exec touch -h -d "@$epoch" {} +
  chmod -R u=rwX,go=rX "$top"
  cpack --config packaging/linux/deb.cmake -B "$stage/cpack" -D "CPACK_INSTALLED_DIRECTORIES=$top;usr" -D "CPACK_PACKAGE_VERSION=$version" \
    -D "CPACK_PACKAGE_CONTACT=$maintainer" -D "CPACK_PACKAGE_FILE_NAME=${name%.deb}" >"$stage/cpack.log" 2>&1 ||
    { cat "$stage/cpack.log"; return 1; }
  cp "$stage/cpack/$name" "$out/"
}
