#!/usr/bin/env bash
# Cross-builds QLMUIDrv.dll and QLMRes.DLL against the real mingw-w64 SDK headers and checks
# the driver's export table.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake --preset win64 >/dev/null
cmake --build --preset win64 -j "$(nproc)"
bash scripts/check-exports.sh build/win64/driver/QLMUIDrv.dll driver/entry/QLMUIDrv.def
for f in build/win64/driver/QLMUIDrv.dll build/win64/resources/QLMRes.DLL; do
  headers=$(x86_64-w64-mingw32-objdump -p "$f")
  grep -q 'Resource Directory \[.rsrc\]' <<<"$headers" || { echo "$f has no resources" >&2; exit 1; }
done
echo "win64 build: $(ls build/win64/driver/QLMUIDrv.dll build/win64/resources/QLMRes.DLL | xargs)"
