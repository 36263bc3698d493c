#!/usr/bin/env bash
# Builds and runs the benchmarks, each together with its peers and lower bounds. Prints the median of five runs in
# random order: on virtual machines the first to use memory that the host had taken away pays for all.
#   ./bench.sh           all areas
#   ./bench.sh pdf kml   only these areas (of base pdf kml settings imaging database server)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
scripts/install-packages.sh native benchmarks
scripts/build.sh bench
# wanted AREA: true if the command line names it or no area at all
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
  "$program" --benchmark_min_time=0.05 --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true \
    --benchmark_report_aggregates_only=true | sed -nE '/^-|^Benchmark/p; s/_median//p'
done

# The cost of a call is measured in the Windows build.
if wanted server; then
  if ! scripts/install-packages.sh windows; then
    echo "bench.sh: Wine cannot be installed here; the cost of automation calls is not measured" >&2
    exit 1
  fi
  scripts/build-windows-libraries.sh i686-w64-mingw32
  scripts/build.sh win32 server_call_cost
  echo "== server_call_cost (32-bit, under Wine)"
  scripts/wine.sh build/win32/benchmarks/server/server_call_cost.exe
fi
