#!/usr/bin/env bash
# Builds and runs the benchmarks, each beside its peers and floors in one run.
#   ./bench.sh           all of them
#   ./bench.sh pdf kml   those of the named areas (base pdf kml settings imaging database server)
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")"
scripts/install-packages.sh native benchmarks
mkdir -p build
echo "Building the benchmarks"
cmake --preset bench >build/bench-configure.log 2>&1 || { cat build/bench-configure.log; exit 1; }
cmake --build build/bench >build/bench-build.log 2>&1 || { grep -v '^\[' build/bench-build.log | head -n 100; exit 1; }
# wanted AREA: whether the command line names it, or names nothing
wanted() {
  [ ${#areas[@]} -eq 0 ] && return 0
  local area
  for area in "${areas[@]}"; do [ "$area" = "$1" ] && return 0; done
  return 1
}

areas=("$@")
for program in build/bench/benchmarks/*_bench; do
  name=$(basename "$program")
  wanted "${name%%_*}" || continue
  echo "== $name"
  "$program" --benchmark_min_time=0.2
done

# What a call costs is a matter of the Windows build.
if wanted server; then
  if ! scripts/install-packages.sh windows; then
    echo "bench.sh: Wine cannot be installed here; the cost of automation calls is not measured" >&2
    exit 1
  fi
  scripts/build-windows-libraries.sh i686-w64-mingw32
  cmake --preset win32 >build/win32-configure.log 2>&1 || { cat build/win32-configure.log; exit 1; }
  cmake --build build/win32 --target server_call_cost >build/win32-build.log 2>&1 ||
    { grep -v '^\[' build/win32-build.log | head -n 100; exit 1; }
  echo "== server_call_cost (32-bit, under Wine)"
  scripts/wine.sh build/win32/benchmarks/server/server_call_cost.exe
fi
