# The symbols: a debugger finds functions with them and not without. Read by try-package.sh after zip.sh and archive.sh, whose
# files it uses.

# line FILE: the source in which a debugger finds a function.
line() {
  local source
  source=$(gdb -nx -batch -ex 'info line veltrano::VeltranoPDF::PDFEndDoc' "$1" 2>&1 | sed -nE 's/^Line [0-9]+ of "([^"]*)".*/\1/p')
  basename "${source:-unknown}"
}

# found_only_with_symbols LABEL FILE SYMBOLS
found_only_with_symbols() {
  local copy="$work/debugged/$1"
  mkdir -p "$copy"
  cp "$2" "$copy/"
  expect "$1: PDFEndDoc without the symbols is in" unknown "$(line "$copy/$(basename "$2")")"
  cp "$3" "$copy/"
  expect "$1: PDFEndDoc with the symbols is in" veltrano_pdf.cpp "$(line "$copy/$(basename "$2")")"
}

echo "The symbols, $(basename "$symbols")"
unzip -q "$symbols" -d "$work/symbols"
names=$(echo "$work/symbols"/*)
texts "$names" README.txt
for architecture in x86 x64; do
  for file in VeltranoFrameWorkDLL.dll veltrano.exe; do
    found_only_with_symbols "$architecture/$file" "$folder/$architecture/$file" "$names/$architecture/$file.debug"
  done
done
found_only_with_symbols veltrano "$prefix/bin/veltrano" "$names/linux-$(uname -m)/veltrano.debug"
mkdir -p "$work/symbols-lib"
# The whole library in place of the one of the archive.
cp -r "$prefix/." "$work/symbols-lib/tree"
cp "$names/linux-$(uname -m)/libveltranoframework.a" "$work/symbols-lib/tree/lib/"
by_find_package symbols-lib/program "$work/symbols-lib/tree" "with the library that has symbols"
expect "static library: PDFEndDoc without the symbols is in" unknown "$(line "$work/cmake/hello")"
expect "static library: PDFEndDoc with the symbols is in" veltrano_pdf.cpp "$(line "$work/symbols-lib/program/hello")"
