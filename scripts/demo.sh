#!/usr/bin/env bash
# The main job: builds the Linux host, starts the simulated printer pjlsim on loopback, installs
# a queue of one plotter model on a port that names it, lets the driver ask the printer, and
# shows what the queue's record holds of the printer, then what the driver tells an application:
# its capabilities and its default settings record.
#
#   bash scripts/demo.sh [MODEL]
#
# MODEL is the driver name of the model (default "Tarvo Plan Output System 2440"). The host's
# state lives in a temporary home that is removed at the end, unless QLMDEMO_HOME names a
# directory to keep it in.
set -euo pipefail
cd "$(dirname "$0")/.."
model=${1:-Tarvo Plan Output System 2440}

bash scripts/deps.sh
cmake --preset host >/dev/null
cmake --build --preset host -j "$(nproc)" --target qlmhost QLMUIDrv QLMRes pjlsim >/dev/null

if [ -n "${QLMDEMO_HOME:-}" ]; then
  home=$QLMDEMO_HOME
  mkdir -p "$home"
else
  home=$(mktemp -d "${TMPDIR:-/tmp}/qlmdemo.XXXXXX")
fi
# The simulated printer listens on a loopback address of its own, port 2000.
address="127.0.$((RANDOM % 200 + 20)).$((RANDOM % 200 + 20))"
cleanup() {
  [ -n "${simpid:-}" ] && kill "$simpid" 2>/dev/null || true
  [ -z "${QLMDEMO_HOME:-}" ] && rm -rf "$home"
  return 0
}
trap cleanup EXIT
qlmhost() { build/host/tools/qlmhost/qlmhost --home "$home" "$@"; }
step() { printf '\n== %s\n' "$*"; }

# The queue is named after the model's number: "Plan 2440", "Plan 318p", "Plan 3320A".
number=$(grep -o '[0-9]\{3,4\}[A-Za-z]*' <<<"$model" | head -n 1 || true)
queue="Plan ${number:-plotter}"

step "The printer: pjlsim with its built-in 2440 profile on $address, port 2000"
build/host/tools/pjlsim/pjlsim --address "$address" --quiet &
simpid=$!
sleep 0.5

step "A port of the standard TCP/IP monitor and a queue of \"$model\" on it"
qlmhost port add "$address" --monitor TCPMON.DLL --description "Standard TCP/IP Port"
qlmhost printer remove "$queue" >/dev/null 2>&1 || true
qlmhost printer add "$queue" --driver "$model" --port "$address"
qlmhost printer list

step "The spooler's notice of the new queue: the driver asks the printer and keeps the answer"
qlmhost event "$queue" initialize
qlmhost printer state "$queue"

step "The driver library, loaded as the spooler loads it, answers at once"
qlmhost driver "$queue"

step "What an application asks: DeviceCapabilities"
qlmhost caps "$queue" DC_PAPERNAMES
qlmhost caps "$queue" DC_BINNAMES
qlmhost caps "$queue" DC_ENUMRESOLUTIONS
qlmhost caps "$queue" DC_MAXEXTENT
qlmhost caps "$queue" DC_MMINCH

step "The default settings record (DrvDocumentProperties, DM_OUT_BUFFER), field by field"
qlmhost devmode default "$queue"
