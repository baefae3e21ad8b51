#!/usr/bin/env bash
# The soak: the driver kept loaded as the spooler or a CAD program keeps it, asked the same
# questions and opening the same sheets again and again in one process, on the Linux host and
# under Wine, with the process's memory and handle counts sampled as it goes (`soak`, the same
# command in qlmhost and qlmwin). Not part of the test run: it takes minutes.
#
#   bash scripts/soak.sh
#
# The figures go to build/soak/host.txt and build/soak/wine.txt, one line a sample and the
# growth of each count from the first sample after the warm-up to the last, with the verdict.
# QLM_SOAK_HOST="CALLS SHEETS EVERY" and QLM_SOAK_WINE="CALLS SHEETS EVERY" change the counts.
# Exit 0 when both verdicts are flat. docs/soak.md says what is counted and holds the figures.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh wine64 wine fonts-wine xvfb
read -r host_calls host_sheets host_every <<<"${QLM_SOAK_HOST:-100000 2000 200}"
read -r wine_calls wine_sheets wine_every <<<"${QLM_SOAK_WINE:-10000 300 30}"
queue="Plan 2440" # on LPT1:, so that no sheet asks a printer
model="Tarvo Plan Output System 2440"

cmake --preset host >/dev/null
cmake --build --preset host -j "$(nproc)" --target qlmhost QLMUIDrv QLMRes >/dev/null
bash scripts/package-win64.sh >/dev/null

work=$PWD/build/soak
rm -rf "$work"
mkdir -p "$work/host"
rc=0

echo "== host: $host_calls export calls, $host_sheets sheet cycles, a sample every $host_every"
qlmhost() { build/host/tools/qlmhost/qlmhost --home "$work/host" "$@"; }
qlmhost printer add "$queue" --driver "$model" >/dev/null
start=$(date +%s)
qlmhost soak "$queue" --calls "$host_calls" --sheets "$host_sheets" --every "$host_every" \
  >"$work/host.txt" || rc=1
echo "$(tail -n 1 "$work/host.txt") ($(($(date +%s) - start)) s)"

echo "== Wine: $wine_calls export calls, $wine_sheets sheet cycles, a sample every $wine_every"
. scripts/wine-prefix.sh "$work/prefix"
qlmwin install --inf build/win64/package/QLMUIDrv.inf --queues tests/scripts/queues.list >/dev/null
start=$(date +%s)
# A sheet cycle under Wine takes a few seconds: the time-out grows with their number, so that
# only a soak that hangs ends it.
QLM_WINE_TIMEOUT=$((300 + 20 * wine_sheets)) qlmwin soak "$queue" --calls "$wine_calls" \
  --sheets "$wine_sheets" --every "$wine_every" >"$work/wine.raw" || rc=1
tr -d '\r' <"$work/wine.raw" >"$work/wine.txt"
echo "$(tail -n 1 "$work/wine.txt") ($(($(date +%s) - start)) s)"
echo "figures: $work/host.txt, $work/wine.txt"
exit "$rc"
