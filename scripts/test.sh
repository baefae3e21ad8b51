#!/usr/bin/env bash
# Builds the Linux host and runs every test, then the whole suite again under the address and
# undefined-behaviour sanitizers.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
jobs=$(nproc)

for preset in host host-asan; do
  echo "== $preset"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  ctest --preset "$preset" -j "$jobs"
done
