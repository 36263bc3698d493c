#!/usr/bin/env bash
# Builds and runs every test: native (with the address and undefined-behaviour sanitizers), 32-bit Windows and 64-bit
# Windows, the latter two under Wine. First installs the Debian packages that it needs.
#   ./test.sh                 all tests
#   ./test.sh --native        only the native ones
#   ./test.sh --lint [BASE]   format and faults of the sources instead; with a commit BASE only of what changed since
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")"

presets=(native-asan win32 win64)
groups=(native windows)
lint=false
base=
case "${1:-}" in
  --lint) lint=true; base=${2:-} ;;
  --native) presets=(native-asan); groups=(native) ;;
  "") ;;
  *) echo "usage: ./test.sh [--native | --lint [BASE]]" >&2; exit 2 ;;
esac

if ! scripts/install-packages.sh native; then
  echo "test.sh: the packages that the native build needs cannot be installed here" >&2
  exit 1
fi
if [ ${#groups[@]} -gt 1 ]; then
  if ! scripts/install-packages.sh windows; then
    echo "test.sh: Wine and the Windows compilers cannot be installed here; ./test.sh --native runs the native tests alone" >&2
    exit 1
  fi
  scripts/build-windows-libraries.sh i686-w64-mingw32 x86_64-w64-mingw32
fi

if $lint; then
  # Each file is looked at alone, so nothing is built but what the sources include.
  for preset in native-lint win32-lint; do
    scripts/build.sh "$preset" veltrano_generated
  done
  exec python3 scripts/lint.py ${base:+--since "$base"} build/native-lint build/win32-lint
fi
for preset in "${presets[@]}"; do
  scripts/build.sh "$preset"
done

if [ ${#groups[@]} -gt 1 ]; then
  echo "Preparing the Wine prefix"
  scripts/wine.sh --prepare
fi

# One run for all targets, so that the summary covers everything.
{
  for preset in "${presets[@]}"; do echo "subdirs(\"$preset\")"; done
} >build/CTestTestfile.cmake
echo "Running the tests: ${presets[*]}"
exec ctest --test-dir build --output-on-failure --no-tests=error -j "$(nproc)"
