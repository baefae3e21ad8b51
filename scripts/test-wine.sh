#!/usr/bin/env bash
# Runs the Windows build under Wine and holds it against the Linux host: installs the driver
# package into a fresh Wine prefix, asks both platforms the same questions (capabilities,
# records, sheet and probe scripts) in one batch each, and compares the answers line by line.
# A case agrees when both platforms print the same answer and neither reports a failure.
# A case whose script says "#: wine-skip REASON" is a Wine defect (docs/wine.md): it runs on
# the host only.
#
# Ends with the plain count line "N passed, N failed". Set QLM_WINE_KEEP=1 to keep build/wine.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh wine64 wine fonts-wine xvfb
jobs=$(nproc)

cmake --preset host >/dev/null
cmake --build --preset host -j "$jobs" --target qlmhost QLMUIDrv QLMRes QLMTestDialogs >/dev/null
bash scripts/package-win64.sh >/dev/null

work=$PWD/build/wine
rm -rf "$work"
mkdir -p "$work/host"
start=$(date +%s)
. scripts/wine-prefix.sh "$work/prefix"

qlmhost() { build/host/tools/qlmhost/qlmhost --home "$work/host" "$@"; }

echo "== install: the package's INF under Wine, the same queues on the host"
# Network ports first: one of the standard TCP/IP monitor's on each platform.
for port in $(cut -f3 tests/scripts/queues.list | grep '^IP_' | sort -u); do
  qlmwin port add "$port" | tr -d '\r'
  qlmhost port add "$port" --monitor TCPMON.DLL >/dev/null
done
qlmwin install --inf build/win64/package/QLMUIDrv.inf --queues tests/scripts/queues.list \
  | tr -d '\r'
while IFS=$'\t' read -r queue driver port; do
  case "$queue" in ''|'#'*) continue ;; esac
  qlmhost printer add "$queue" --driver "$driver" --port "${port:-LPT1:}" >/dev/null
done <tests/scripts/queues.list

# Records the merges of answers.list start from, made by the host's driver.
mkdir -p "$work/records"
qlmhost devmode default "Plan 2440" --out "$work/records/plan2440.bin" >/dev/null
qlmhost devmode default "Plan 318p" --out "$work/records/plan318p.bin" >/dev/null
# A bare DEVMODEW of another driver: the public part alone, no private bytes declared.
# (dd reads what it needs; "tail | head" could end on SIGPIPE, which pipefail makes fatal.)
{ head -c 70 "$work/records/plan2440.bin"; printf '\0\0'
  dd if="$work/records/plan2440.bin" bs=1 skip=72 count=148 status=none; } >"$work/records/public.bin"

# One command line a case, the same text on both platforms; "COMMAND<TAB>REASON" for the
# cases that are not run on Wine.
: >"$work/cases.list"
: >"$work/skipped.list"
add_case() { # COMMAND [REASON]
  printf '%s\n' "$1" >>"$work/cases.list"
  [ -n "${2:-}" ] && printf '%s\t%s\n' "$1" "$2" >>"$work/skipped.list"
  return 0
}
while IFS= read -r line; do
  case "$line" in ''|'#'*) continue ;; esac
  command=${line%%  # wine-skip: *}
  reason=""
  [ "$command" != "$line" ] && reason=${line#*  # wine-skip: }
  add_case "${command%"${command##*[![:space:]]}"}" "$reason"
done <tests/scripts/answers.list
for f in tests/scripts/sheets/*.sheet tests/scripts/probe/*.probe; do
  [ -e "$f" ] || continue
  kind=sheet
  [ "${f##*.}" = probe ] && kind=probe
  add_case "$kind --case $f --dump --json" "$(sed -n 's/^#: wine-skip //p' "$f")"
done
grep -v -x -F -f <(cut -f1 "$work/skipped.list") "$work/cases.list" >"$work/cases.wine.list" || true

echo "== the host answers $(wc -l <"$work/cases.list") cases"
# A batch with a failed case exits 1; the comparison below tells which.
qlmhost batch "$work/cases.list" >"$work/host.out" || true
echo "== Wine answers $(wc -l <"$work/cases.wine.list") cases"
# A sheet script under Wine takes a few seconds (a case of many dialogs up to ten); the batch's
# time-out grows with their number, so that only a case that hangs ends it.
sheets=$(grep -c '^\(sheet\|probe\) ' "$work/cases.wine.list" || true)
QLM_WINE_TIMEOUT=$((180 + 15 * sheets)) qlmwin batch "$work/cases.wine.list" | tr -d '\r' >"$work/wine.out" || true

# Each output line is "COMMAND<TAB>ANSWER". A case passes when the host's answer reports no
# failure and, unless skipped on Wine, Wine's answer is the same text.
awk -F'\t' -v skipped="$work/skipped.list" '
  function kind(command) {
    if (command ~ /^caps /) return "capability answers"
    if (command ~ /^devmode /) return "records"
    if (command ~ /^sheet /) return "sheet scripts"
    if (command ~ /^probe /) return "probe scripts"
    return "other answers"
  }
  function failed(answer) {
    return answer ~ /^\{"error": / || (answer ~ /"failures": \[/ && answer !~ /"failures": \[\]/)
  }
  BEGIN { while ((getline line < skipped) > 0) { split(line, f, "\t"); skip[f[1]] = f[2] } }
  FNR == NR { wine[$1] = $2; next }
  {
    k = kind($1); total[k]++
    if (failed($2)) { print "FAIL (host) " $1 ": " $2; bad++; nbad[k]++; next }
    if ($1 in skip) { print "skip on Wine " $1 ": " skip[$1]; good++; nskip[k]++; next }
    if (!($1 in wine)) { print "FAIL (no Wine answer) " $1; bad++; nbad[k]++; next }
    if (failed(wine[$1])) { print "FAIL (Wine) " $1 ": " wine[$1]; bad++; nbad[k]++; next }
    if (wine[$1] != $2) {
      print "FAIL (differ) " $1 "\n  host: " $2 "\n  wine: " wine[$1]; bad++; nbad[k]++; next
    }
    good++; nagree[k]++
  }
  END {
    for (k in total)
      printf "%s: %d agree between the host and Wine, %d skipped on Wine, %d failed\n",
             k, nagree[k], nskip[k], nbad[k]
    printf "%d passed, %d failed\n", good, bad
    exit bad > 0
  }' "$work/wine.out" "$work/host.out" | tee "$work/summary.txt" | grep -v '^[0-9]* passed' || true
# Figures, not verdicts: what the most frequent questions cost on each platform, same run.
echo "== benchmark on the host (median of 200 calls)"
qlmhost bench "Plan 2440" --calls 200 || true
echo "== benchmark under Wine (median of 40 calls, and the platform's calls one by one)"
qlmwin bench "Plan 2440" --calls 40 --parts | tr -d '\r' || true
echo "(Wine run: $(($(date +%s) - start)) s)"
tail -n 1 "$work/summary.txt"
grep -q '^[0-9]* passed, 0 failed$' "$work/summary.txt"
