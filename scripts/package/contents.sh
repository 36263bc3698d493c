# What several packages contain. Read by pack.sh, which sets the variables; each function puts its part into a folder.

fill() { sed "s/@version@/$version/g; s/@machine@/$machine/g" "$1"; }

for_windows() { sed 's/\r*$/\r/' "$1"; }

# at_commit COMMAND ...: runs it at the time of the last commit.
at_commit() { faketime -f "$(date -d "@$epoch" '+%Y-%m-%d %H:%M:%S')" "$@"; }

# zipped FOLDER_OF_STAGE: packs it as a zip in out/.
zipped() {
  find "$stage/$1" -exec touch -h -d "@$epoch" {} +
  # A sorted list instead of -r, whose order depends on the file system.
  (cd "$stage" && find "$1" -type f | LC_ALL=C sort | zip -q -X -9 -@ "$out/$1.zip")
}

# split_symbols PREFIX_OF_TOOLS FILE FOLDER: moves the symbols of a program or DLL to FOLDER/NAME.debug, where a debugger looks
# for them if that lies beside the file.
split_symbols() {
  local symbols
  symbols="$3/$(basename "$2").debug"
  mkdir -p "$3"
  # They write the time into files for Windows.
  at_commit "$1objcopy" --only-keep-debug "$2" "$symbols"
  chmod 644 "$symbols"
  at_commit "$1strip" --strip-all "$2"
  at_commit "$1objcopy" --add-gnu-debuglink="$symbols" "$2"
}

# The manual, the same for the same sources: fixed order of everything, no traces of the build.
manual() {
  if [ ! -d "$stage/manual" ]; then
    PYTHONHASHSEED=0 PYTHONDONTWRITEBYTECODE=1 \
      sphinx-build -q -E -W -d "$stage/doctrees" -b html docs "$stage/manual"
    rm "$stage/manual/.buildinfo" "$stage/manual/objects.inv"
    # Of the scripts and styles in it.
    mkdir "$stage/manual/licenses"
    local package
    for package in sphinx-common sphinx-basic-ng furo libjs-jquery libjs-underscore; do
      cp -L "/usr/share/doc/$package/copyright" "$stage/manual/licenses/$package.txt"
    done
  fi
  cp -r "$stage/manual" "$1/manual"
}

stubs() { PYTHONDONTWRITEBYTECODE=1 python3 scripts/make_stubs.py "$1/stubs"; }

samples() {
  cp -r samples "$1/samples"
  find "$1/samples" -name CMakeLists.txt -delete
  # They need headers that are not installed.
  rm "$1/samples/make_photo.cpp" "$1/samples/make_contacts.cpp"
}

# The database for contacts.vbs.
contacts() { at_commit build/native-package/samples/make_contacts "$1/contacts.mdb"; }

# The licence that NOTICE names.
apache_license() { cp -L /usr/share/common-licenses/Apache-2.0 "$1/Apache-2.0.txt"; }

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
