#!/usr/bin/env bash
# Builds and runs the benchmarks, each beside its peers and floors in one run.
#   ./bench.sh           all of them
#   ./bench.sh pdf kml   those of the named areas (base pdf kml settings imaging database)
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")"
scripts/install-packages.sh native benchmarks
mkdir -p build
echo "Building the benchmarks"
cmake --preset bench >build/bench-configure.log 2>&1 || { cat build/bench-configure.log; exit 1; }
cmake --build build/bench >build/bench-build.log 2>&1 || { grep -v '^\[' build/bench-build.log | head -n 100; exit 1; }
for program in build/bench/benchmarks/*_bench; do
  name=$(basename "$program")
  if [ $# -gt 0 ]; then
    chosen=false
    for area in "$@"; do case "$name" in "$area"*) chosen=true ;; esac; done
    $chosen || continue
  fi
  echo "== $name"
  "$program" --benchmark_min_time=0.2
done
