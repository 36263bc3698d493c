#!/usr/bin/env bash
# Configures and builds a preset; shows the output of the tools only if they fail.
#   scripts/build.sh PRESET [TARGET ...]
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=$1
shift
[ $# -eq 0 ] || set -- --target "$@"

echo "Building $preset"
mkdir -p build
cmake --preset "$preset" >"build/$preset-configure.log" 2>&1 || { cat "build/$preset-configure.log"; exit 1; }
cmake --build "build/$preset" "$@" >"build/$preset-build.log" 2>&1 ||
  { grep -v '^\[' "build/$preset-build.log" | head -n 100; exit 1; }
