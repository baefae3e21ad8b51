#!/usr/bin/env bash
# Runs the Windows build under Wine and holds it against the Linux host: installs the driver
# package into a fresh Wine prefix, asks both platforms the same questions (capabilities,
# records, sheet and probe scripts) in one batch each, and compares the answers line by line.
# A case agrees when both platforms print the same answer and neither reports a failure.
# A case whose script says "#: wine-skip REASON" is a Wine defect (docs/wine.md): it runs on
# the host only and counts as skipped. A line of answers.list may narrow its comparison to what
# Wine does right (docs/wine.md): "# wine-without: FIELD REASON" leaves a field of the record out
# on both sides, "# wine-against: COMMAND REASON" holds Wine's answer against the host's answer
# to COMMAND.
#
# The printers that answer are pjlsim programs on loopback addresses: one for each script case
# that says "#: pjlsim ...", started before the Wine batch (the host runs its own in-process),
# and one for each "#: pjlsim QUEUE ..." line of answers.list, started before the queues are
# made and serving both platforms. All of them are stopped when the script ends.
#
# Ends with the plain count line "N passed, N failed, N skipped". Set QLM_WINE_KEEP=1 to keep
# build/wine, QLM_WINE_ONLY=REGEX to run only the cases whose command line matches.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh wine64 wine fonts-wine xvfb
jobs=$(nproc)

cmake --preset host >/dev/null
cmake --build --preset host -j "$jobs" --target qlmhost pjlsim QLMUIDrv QLMRes QLMTestDialogs \
  >/dev/null
bash scripts/package-win64.sh >/dev/null

work=$PWD/build/wine
rm -rf "$work"
mkdir -p "$work/host"
start=$(date +%s)
. scripts/wine-prefix.sh "$work/prefix"

qlmhost() { build/host/tools/qlmhost/qlmhost --home "$work/host" "$@"; }

# The answering printers: pjlsim programs, each on an address of its own, ended on exit before
# the prefix goes.
mkdir -p "$work/pjlsim"
pjlsim_pids=()
pjlsim_addresses=" "
stop_printers() {
  local pid
  for pid in "${pjlsim_pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  for pid in "${pjlsim_pids[@]}"; do wait "$pid" 2>/dev/null || true; done
  pjlsim_pids=()
}
trap 'stop_printers; qlm_wine_cleanup' EXIT
# The address of a queue's port (IP_a.b.c.d) in queues.list.
queue_address() { # QUEUE
  awk -F'\t' -v q="$1" '$1 == q && $3 ~ /^IP_/ { print substr($3, 4) }' tests/scripts/queues.list
}
# start_printer WHAT QUEUE WORDS: a pjlsim for QUEUE, with the words of a "#: pjlsim" line
# (PROFILE, --fault, --delay-ms, --address), on an address that no other printer of the run has.
start_printer() {
  local what=$1 queue=$2 address="" profile="" args=() word
  set -- $3
  address=$(queue_address "$queue")
  while [ $# -gt 0 ]; do
    word=$1
    shift
    case "$word" in
      --address) address=$1; shift ;;
      --fault|--delay-ms) args+=("$word" "$1"); shift ;;
      *) profile=$word ;;
    esac
  done
  if [ -z "$address" ]; then
    echo "$what: the queue '$queue' has no IP_ port in tests/scripts/queues.list" >&2
    exit 1
  fi
  case "$pjlsim_addresses" in *" $address "*)
    echo "$what: another case's printer answers on $address already" >&2
    exit 1 ;;
  esac
  pjlsim_addresses="$pjlsim_addresses$address "
  [ -n "$profile" ] && args+=(--profile "$profile")
  local log="$work/pjlsim/$address.log"
  : >"$log"
  build/host/tools/pjlsim/pjlsim --address "$address" --quiet "${args[@]}" >"$log" 2>&1 &
  pjlsim_pids+=($!)
  local tries=0
  until grep -q '^pjlsim: listening' "$log"; do
    tries=$((tries + 1))
    if [ $tries -gt 50 ] || ! kill -0 "${pjlsim_pids[-1]}" 2>/dev/null; then
      echo "$what: pjlsim did not start on $address: $(cat "$log")" >&2
      exit 1
    fi
    sleep 0.1
  done
}
# The queues whose printer answers for the whole run ("#: pjlsim QUEUE [WORDS]" in
# answers.list): the queue's creation asks it already.
while IFS= read -r line; do
  words=${line#'#: pjlsim "'}
  queue=${words%%'"'*}
  start_printer tests/scripts/answers.list "$queue" "${words#*'"'}"
done < <(grep '^#: pjlsim ' tests/scripts/answers.list)

echo "== install: the package's INF under Wine, the same queues on the host"
# Network ports first: one of the standard TCP/IP monitor's on each platform.
for port in $(cut -f3 tests/scripts/queues.list | grep '^IP_' | sort -u); do
  qlmwin port add "$port" | tr -d '\r'
  qlmhost port add "$port" --monitor TCPMON.DLL >/dev/null
done
# qlmwin install tells the driver of each new queue (PRINTER_EVENT_INITIALIZE) as the Windows
# spooler does and Wine's AddPrinterW does not; the host's driver is told the same after
# printer add.
qlmwin install --inf build/win64/package/QLMUIDrv.inf --queues tests/scripts/queues.list \
  | tr -d '\r'
while IFS=$'\t' read -r queue driver port; do
  case "$queue" in ''|'#'*) continue ;; esac
  qlmhost printer add "$queue" --driver "$driver" --port "${port:-LPT1:}" >/dev/null
  qlmhost event "$queue" initialize >/dev/null
done <tests/scripts/queues.list

# Records the merges of answers.list start from, made by the host's driver.
mkdir -p "$work/records"
qlmhost devmode default "Plan 2440" --out "$work/records/plan2440.bin" >/dev/null
qlmhost devmode default "Plan 318p" --out "$work/records/plan318p.bin" >/dev/null
# A bare DEVMODEW of another driver: the public part alone, no private bytes declared.
# (dd reads what it needs; "tail | head" could end on SIGPIPE, which pipefail makes fatal.)
{ head -c 70 "$work/records/plan2440.bin"; printf '\0\0'
  dd if="$work/records/plan2440.bin" bs=1 skip=72 count=148 status=none; } >"$work/records/public.bin"

# One command line a case, the same text on both platforms. Beside it: the cases not run on
# Wine ("COMMAND<TAB>REASON"), the fields left out of a record's comparison
# ("COMMAND<TAB>FIELD"), and the host's command whose answer Wine's is held against
# ("COMMAND<TAB>HOST COMMAND"), which the host answers too.
: >"$work/cases.list"
: >"$work/skipped.list"
: >"$work/without.list"
: >"$work/against.list"
add_case() { # COMMAND [REASON]
  printf '%s\n' "$1" >>"$work/cases.list"
  [ -n "${2:-}" ] && printf '%s\t%s\n' "$1" "$2" >>"$work/skipped.list"
  return 0
}
while IFS= read -r line; do
  case "$line" in ''|'#'*) continue ;; esac
  command=${line%%  # wine-*}
  command=${command%"${command##*[![:space:]]}"}
  note=""
  [ "$command" != "$line" ] && note=${line#*  # wine-}
  case "$note" in
    '') add_case "$command" ;;
    skip:\ *) add_case "$command" "${note#skip: }" ;;
    without:\ *) add_case "$command"; printf '%s\t%s\n' "$command" "${note#without: }" >>"$work/without.list" ;;
    against:\ *) add_case "$command"; printf '%s\t%s\n' "$command" "${note#against: }" >>"$work/against.list" ;;
    *) echo "tests/scripts/answers.list: unknown note '# wine-$note'" >&2; exit 1 ;;
  esac
done <tests/scripts/answers.list
for f in tests/scripts/sheets/*.sheet tests/scripts/probe/*.probe; do
  [ -e "$f" ] || continue
  kind=sheet
  [ "${f##*.}" = probe ] && kind=probe
  add_case "$kind --case $f --dump --json" "$(sed -n 's/^#: wine-skip //p' "$f")"
done
if [ -n "${QLM_WINE_ONLY:-}" ]; then
  grep -E -e "$QLM_WINE_ONLY" "$work/cases.list" >"$work/cases.only.list" || true
  mv "$work/cases.only.list" "$work/cases.list"
fi
grep -v -x -F -f <(cut -f1 "$work/skipped.list") "$work/cases.list" >"$work/cases.wine.list" || true
{ cat "$work/cases.list"; cut -f2 "$work/against.list"; } >"$work/cases.host.list"

echo "== the host answers $(wc -l <"$work/cases.host.list") cases"
# A batch with a failed case exits 1; the comparison below tells which.
qlmhost batch "$work/cases.host.list" >"$work/host.out" || true

# The printers of the script cases, for the Wine batch: the host's ran in-process, one case at
# a time, on the same addresses.
for f in tests/scripts/sheets/*.sheet tests/scripts/probe/*.probe; do
  grep -q '^#: pjlsim' "$f" || continue
  grep -q '^#: wine-skip ' "$f" && continue
  queue=$(sed -n 's/^#: printer //p' "$f")
  start_printer "$f" "${queue:-Plan 2440}" "$(sed -n 's/^#: pjlsim *//p' "$f")"
done
echo "== Wine answers $(wc -l <"$work/cases.wine.list") cases"
# A sheet script under Wine takes a few seconds (a case of many dialogs up to ten); the batch's
# time-out grows with their number, so that only a case that hangs ends it.
sheets=$(grep -c '^\(sheet\|probe\) ' "$work/cases.wine.list" || true)
QLM_WINE_TIMEOUT=$((180 + 15 * sheets)) qlmwin batch "$work/cases.wine.list" | tr -d '\r' >"$work/wine.out" || true
stop_printers

# Each output line is "COMMAND<TAB>ANSWER". A case passes when the host's answer reports no
# failure and Wine's answer is the same text (without the fields left out, or against the
# host's answer named); a case not run on Wine is skipped, whatever the host said.
awk -F'\t' -v work="$work" '
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
  # A record'"'"'s answer without the fields named (blank-separated): "FIELD": VALUE, a text
  # value or a number.
  function without(answer, fields,   n, i, names, re) {
    n = split(fields, names, " ")
    for (i = 1; i <= n; i++) {
      re = "\"" names[i] "\": (\"([^\"\\\\]|\\\\.)*\"|[^,}]*)(, )?"
      gsub(re, "", answer)
    }
    return answer
  }
  function fail(k, text) { print text; bad++; nbad[k]++ }
  BEGIN {
    while ((getline line < (work "/skipped.list")) > 0) { split(line, f, "\t"); skip[f[1]] = f[2] }
    while ((getline line < (work "/without.list")) > 0) { split(line, f, "\t"); drop[f[1]] = f[2] }
    while ((getline line < (work "/against.list")) > 0) { split(line, f, "\t"); against[f[1]] = f[2] }
    while ((getline line < (work "/wine.out")) > 0) {
      i = index(line, "\t"); wine[substr(line, 1, i - 1)] = substr(line, i + 1)
    }
    while ((getline line < (work "/host.out")) > 0) {
      i = index(line, "\t"); host[substr(line, 1, i - 1)] = substr(line, i + 1)
    }
  }
  {
    c = $0; k = kind(c); total[k]++
    if (!(c in host)) { fail(k, "FAIL (no host answer) " c); next }
    if (failed(host[c])) { fail(k, "FAIL (host) " c ": " host[c]); next }
    if (c in skip) { print "skip on Wine " c ": " skip[c]; skipped++; nskip[k]++; next }
    if (!(c in wine)) { fail(k, "FAIL (no Wine answer) " c); next }
    if (failed(wine[c])) { fail(k, "FAIL (Wine) " c ": " wine[c]); next }
    want = host[c]; have = wine[c]; how = ""
    if (c in against) {
      if (!(against[c] in host) || failed(host[against[c]])) {
        fail(k, "FAIL (host) " against[c] ": " host[against[c]]); next
      }
      want = host[against[c]]; how = " (against the host'"'"'s " against[c] ")"
    }
    if (c in drop) {
      want = without(want, drop[c]); have = without(have, drop[c]); how = " (without " drop[c] ")"
    }
    if (have != want) { fail(k, "FAIL (differ) " c how "\n  host: " want "\n  wine: " have); next }
    good++; nagree[k]++
  }
  END {
    for (k in total)
      printf "%s: %d agree between the host and Wine, %d failed, %d skipped on Wine\n",
             k, nagree[k], nbad[k], nskip[k]
    printf "%d passed, %d failed, %d skipped\n", good, bad, skipped
    exit bad > 0
  }' "$work/cases.list" | tee "$work/summary.txt" | grep -v '^[0-9]* passed' || true
# Figures, not verdicts: what the most frequent questions cost on each platform, same run.
echo "== benchmark on the host (median of 200 calls)"
qlmhost bench "Plan 2440" --calls 200 || true
echo "== benchmark under Wine (median of 40 calls, and the platform's calls one by one)"
qlmwin bench "Plan 2440" --calls 40 --parts | tr -d '\r' || true
echo "(Wine run: $(($(date +%s) - start)) s)"
tail -n 1 "$work/summary.txt"
grep -q '^[0-9]* passed, 0 failed, [0-9]* skipped$' "$work/summary.txt"
