#!/usr/bin/env bash
# Every test of both platforms: the layering of the driver's includes, the host suites, then the
# whole suite again under the address and undefined-behaviour sanitizers, the thread test under
# the thread sanitizer, each fuzz target briefly from its corpus (scripts/fuzz.sh), then the
# Windows cross build with its export check, and last the Windows build run under Wine and
# compared with the host (scripts/test-wine.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
jobs=$(nproc)

echo "== layers"
python3 scripts/check-layers.py

for preset in host host-asan; do
  echo "== $preset"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  ctest --preset "$preset" -j "$jobs"
done

# Only the thread test and what it loads are built here; any report of the sanitizer fails it.
echo "== host-tsan"
cmake --preset host-tsan >/dev/null
cmake --build --preset host-tsan -j "$jobs"
TSAN_OPTIONS="halt_on_error=1 exitcode=66" build/host-tsan/tests/test_threads

echo "== fuzz"
bash scripts/fuzz.sh

echo "== win64"
bash scripts/build-win64.sh
echo "== wine"
bash scripts/test-wine.sh
