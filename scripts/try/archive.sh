# The archive for Linux: with CMake, with pkg-config, carried to other folders. Read by try-package.sh.

# hello FOLDER LABEL: runs the program in that folder.
hello() {
  rm -f "$1/hello.pdf"
  expect "$2: its text is measured" "yes" "$(cd "$1" && ./hello && echo yes || echo no)"
  expect "$2: its page shows" "Hello from Linux" "$(page "$1/hello.pdf")"
}

# by_find_package NAME PREFIX LABEL: builds and runs the program below; without a prefix, of what is installed on the machine.
by_find_package() {
  (cmake -S "$work/program" -B "$work/$1" ${2:+"-DCMAKE_PREFIX_PATH=$2"} && cmake --build "$work/$1") >"$work/$1.log" 2>&1 ||
    tail -n 20 "$work/$1.log"
  hello "$work/$1" "$3"
}

# by_pkg_config NAME FOLDER LABEL
by_pkg_config() {
  mkdir "$work/$1"
  # shellcheck disable=SC2046
  PKG_CONFIG_PATH=$2 sh -c 'g++ -std=c++20 "$1/program/hello.cpp" $(pkg-config --cflags --libs veltranoframework) -o "$1/$2/hello"' \
    sh "$work" "$1" 2>"$work/$1.log" || tail -n 20 "$work/$1.log"
  hello "$work/$1" "$3"
}

echo "The archive for Linux, $(basename "$tar")"
# In a folder with a blank in its name, as users have them; not for pkg-config, whose output the shell splits at blanks.
mkdir -p "$work/linux" "$work/program"
tar -xf "$tar" -C "$work/linux"
prefix=$(echo "$work/linux"/*)
plain=$(mktemp -d)
cp -r "$prefix" "$plain/veltrano"
saw "files" "$(find "$prefix" -type f | wc -l), $(du -sh --apparent-size "$prefix" | cut -f 1) unpacked"
texts "$prefix/share/doc/veltranoframework" LICENSE NOTICE CHANGELOG.md Apache-2.0.txt manual/index.html samples/contacts.mdb
expect "links of the manual that lead nowhere" "" "$(dead_links "$prefix/share/doc/veltranoframework/manual")"
expect "its program: doctor finds" "nothing wrong" "$("$prefix/bin/veltrano" doctor >"$work/doctor.log" && echo "nothing wrong" || echo "faults, see $work/doctor.log")"
expect "its manual page" "there" "$([ -s "$prefix/share/man/man1/veltrano.1.gz" ] && echo "there" || echo "missing")"
cat >"$work/program/hello.cpp" <<'PROGRAM'
#include <veltrano/pdf.h>

int main() {
  veltrano::VeltranoPDF pdf;
  pdf.PDFFileName("hello.pdf");
  pdf.PDFBeginDoc();
  pdf.PDFSetFont(veltrano::FONT_ARIAL, 24);
  pdf.PDFTextOut("Hello from Linux", 2, 3);
  pdf.PDFEndDoc();
  return pdf.PDFGetStringWidth("Hello", "Helvetica", 10) == 22.78 ? 0 : 1;
}
PROGRAM
cat >"$work/program/CMakeLists.txt" <<'PROJECT'
cmake_minimum_required(VERSION 3.25)
project(hello LANGUAGES CXX)
find_package(VeltranoFrameWork 1.0 REQUIRED)
add_executable(hello hello.cpp)
target_link_libraries(hello PRIVATE VeltranoFrameWork::VeltranoFrameWork)
PROJECT
texts "$prefix/include/veltrano" pdf.h kml.h xml.h ini.h jpg.h png.h mdb.h wev.h value.h text.h version.h
(cd "$prefix/include" && printf '#include <%s>\n' veltrano/*) >"$work/headers.cpp"
expect "the headers, one by one and together, compile" "clean" "$(for header in "$prefix"/include/veltrano/*.h "$work/headers.cpp"; do
  g++ -std=c++20 -Wall -Wextra -DVELTRANO_INSTALLED -fsyntax-only -x c++ -I "$prefix/include" -include "$header" /dev/null
done 2>"$work/headers.log" && [ ! -s "$work/headers.log" ] && echo "clean" || echo "not clean, see $work/headers.log")"
expect "the version of the headers" "$version" "$(printf '#include <veltrano/version.h>\nversion: %s\n' \
  'VELTRANO_VERSION_MAJOR VELTRANO_VERSION_MINOR VELTRANO_VERSION_PATCH' | g++ -E -P -x c++ -I "$prefix/include" - |
  sed -n 's/^version: //p' | tr ' ' .)"
by_find_package cmake "$prefix" "by find_package, in a folder with a blank"
by_pkg_config pkgconfig "$plain/veltrano/lib/pkgconfig" "by pkg-config"
# shellcheck disable=SC2046
PKG_CONFIG_PATH="$plain/veltrano/lib/pkgconfig" sh -c 'g++ -std=c++20 "$1/share/doc/veltranoframework/samples/native_report.cpp" \
  $(pkg-config --cflags --libs veltranoframework) -o "$2/native_report" &&
  "$2/native_report" "$1/share/doc/veltranoframework/samples" "$2"' sh "$plain/veltrano" "$work/pkgconfig" 2>"$work/report.log" ||
  tail -n 20 "$work/report.log"
expect "its sample native_report.cpp: the page shows" "Orders of the year" "$(page "$work/pkgconfig/report.pdf")"
# shellcheck disable=SC2046
PKG_CONFIG_PATH="$plain/veltrano/lib/pkgconfig" sh -c 'g++ -std=c++20 "$1/hosts/members.cpp" \
  $(pkg-config --cflags --libs veltranoframework) -o "$2/members" &&
  "$2/members" "$1/contacts.mdb" "$1/photo.jpg" "$2"' sh "$plain/veltrano/share/doc/veltranoframework/samples" "$work/pkgconfig" \
  >"$work/members.log" 2>&1 || true
expect "its sample members.cpp says" "done" "$(tail -n 1 "$work/members.log")"
# On a machine without the package: the metrics are beside the program, or in share beside its folder.
rm -rf "$plain"
mkdir -p "$work/carried/beside" "$work/carried/tree/bin" "$work/carried/tree/share/veltranoframework"
cp "$work/pkgconfig/hello" "$prefix"/share/veltranoframework/metrics/*.afm "$work/carried/beside/"
hello "$work/carried/beside" "carried, metrics beside the program"
cp "$work/pkgconfig/hello" "$work/carried/tree/bin/"
cp -r "$prefix/share/veltranoframework/metrics" "$work/carried/tree/share/veltranoframework/"
hello "$work/carried/tree/bin" "carried, metrics in ../share"
