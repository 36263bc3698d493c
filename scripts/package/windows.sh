# The packages for Windows. Read by pack.sh, which sets the variables.

windows="VeltranoFrameWork-$version-windows"

sign() {
  if [ -n "${VELTRANO_SIGN:-}" ]; then
    "$VELTRANO_SIGN" "$1"
  fi
}

# program WORD_SIZE ARCHITECTURE TRIPLET: the DLL, the program and what belongs beside them.
program() {
  local top="$stage/$windows/$2" file
  cmake --install "build/win$1-package" --prefix "$top" --component windows >"$stage/install.log"
  for file in VeltranoFrameWorkDLL.dll veltrano.exe; do
    split_symbols "$3-" "$top/$file" "$stage/VeltranoFrameWork-$version-symbols/$2"
    sign "$top/$file"
  done
}

pack_zip() {
  local top="$stage/$windows" text
  echo "Packing $windows.zip"
  mkdir -p "$top"
  program 32 x86 i686-w64-mingw32
  program 64 x64 x86_64-w64-mingw32
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
  zipped "$windows"
}

# pack_installer ARCHITECTURE: of the files of the zip.
pack_installer() {
  local name="VeltranoFrameWork-$version-$1.msi"
  echo "Packing $name"
  at_commit packaging/windows/make_installer.sh "$1" "$version" "$stage/$windows" "$out/$name"
  sign "$out/$name"
}
