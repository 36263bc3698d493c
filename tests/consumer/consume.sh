#!/usr/bin/env bash
# Uses the library as other C++ projects do: as a subdirectory, fetched from a git repository, installed and found by CMake
# or pkg-config, static and shared. Each program must find the font metrics and write its page.
#   consume.sh PROJECT_FOLDER WORK_FOLDER
set -eu
project=$1
work=$2/consumers
here=$project/tests/consumer
rm -rf "$work"
mkdir -p "$work"
cd "$work"
# Quick to compile; ccache finds what another way has compiled.
export CXXFLAGS=-O0 CCACHE_BASEDIR=$work
if command -v ccache >/dev/null; then export CMAKE_CXX_COMPILER_LAUNCHER=ccache; fi
unset VELTRANO_METRICS

fail() { echo "consume.sh: $1" >&2; exit 1; }
quietly() { "$@" >log 2>&1 || { tail -n 40 log; fail "$*"; }; }

# check WAY PROGRAM: the program runs, from another folder.
check() {
  mkdir "$1-out"
  (cd "$1-out" && "$2" >said) || fail "$1: the program fails"
  grep -qE '^[0-9.]+ 22\.78$' "$1-out/said" || fail "$1: $(cat "$1-out/said"), so the metrics were not found"
  [ "$(pdftotext "$1-out/consumer.pdf" - 2>/dev/null | head -n 1)" = "Café $1" ] || fail "$1: the page is wrong"
}

# consume WAY [CMAKE_OPTION ...]
consume() {
  local way=$1
  shift
  quietly cmake -G Ninja -S "$here" -B "$way" -DCONSUMER_WAY="$way" "$@"
  quietly cmake --build "$way"
  check "$way" "$work/$way/consumer"
}

# with_pkgconfig WAY PREFIX
with_pkgconfig() {
  local flags
  # As a build system reads it: blanks in paths are quoted.
  eval "flags=($(PKG_CONFIG_PATH="$2/lib/pkgconfig" pkg-config --cflags --libs veltranoframework))"
  quietly g++ -std=c++20 "-DVELTRANO_TEST_NAME=\"$1\"" "$here/consumer.cpp" "${flags[@]}" "-Wl,-rpath,$2/lib" -o "$1-consumer"
  check "$1" "$work/$1-consumer"
}

# install PREFIX CMAKE_OPTION ...
install() {
  local prefix=$1
  shift
  quietly cmake -G Ninja -S "$sources" -B "$prefix-build" -DVELTRANO_TESTS=OFF -DVELTRANO_SAMPLES=OFF -DVELTRANO_TOOLS=OFF \
    -DVELTRANO_WARNINGS_AS_ERRORS=OFF -DCMAKE_INSTALL_LIBDIR=lib "$@"
  quietly cmake --build "$prefix-build" --target VeltranoFrameWork
  quietly cmake --install "$prefix-build" --prefix "$work/$prefix-first" --component linux
  # What is installed may be moved.
  mv "$prefix-first" "$prefix"
}

# The work tree as a repository, which may differ from what is committed.
mkdir repository
(cd "$project" && git ls-files -z --cached --others --exclude-standard | xargs -0 cp --parents -t "$work/repository" 2>/dev/null) || true
quietly git -C repository init -q
quietly git -C repository add -A
quietly git -C repository -c user.name=test -c user.email=test@localhost commit -qm "The work tree"
consume fetch -DCONSUMER_SOURCE="file://$work/repository" -DFETCHCONTENT_BASE_DIR="$work/fetched"
[ ! -e fetched/veltrano-build/tests ] || fail "a project that uses the library builds its tests, too"
# The other ways compile the same files with the same options, so ccache has them.
sources=$work/fetched/veltrano-src
consume subdirectory -DCONSUMER_SOURCE="$sources"

install static -DBUILD_SHARED_LIBS=OFF
install shared -DBUILD_SHARED_LIBS=ON
# The path of a header is no help to a program that is built so.
CXXFLAGS="$CXXFLAGS -ffile-prefix-map=/=." consume found-static -DCMAKE_PREFIX_PATH="$work/static"
consume found-shared -DCMAKE_PREFIX_PATH="$work/shared"
with_pkgconfig pkgconfig-static "$work/static"
with_pkgconfig pkgconfig-shared "$work/shared"
if nm -DC --defined-only shared/lib/libveltranoframework.so | grep -vE ' [VWu] ' |
  grep -vE ' [A-Z] (vtable for |typeinfo (name )?for )?veltrano::(Veltrano[A-Z]+|Value|Picture|cDIBSection|utf8ToAnsi|ansiToUtf8|codePage|setCodePage|setMetricsFolder)\b'; then
  fail "the shared library shows more than its headers declare"
fi
