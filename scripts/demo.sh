#!/usr/bin/env bash
# The main job: builds the Linux host, installs a queue of the driver in a fresh host home,
# and shows what the driver answers and the settings record it works on.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake --preset host >/dev/null
cmake --build --preset host -j "$(nproc)" --target qlmhost QLMUIDrv QLMRes >/dev/null

home=$(mktemp -d "${TMPDIR:-/tmp}/qlmdemo.XXXXXX")
trap 'rm -rf "$home"' EXIT
qlmhost() { build/host/tools/qlmhost/qlmhost --home "$home" "$@"; }
step() { printf '\n== %s\n' "$*"; }

step "A port of the standard TCP/IP monitor and a queue of the driver on it"
qlmhost port add 127.0.0.1 --monitor TCPMON.DLL --description "Standard TCP/IP Port"
qlmhost printer add "Plan 2440" --driver "Tarvo Plan Output System 2440" --port 127.0.0.1
qlmhost printer list
qlmhost port list

step "Debug switches live in the queue's printer data"
qlmhost data set "Plan 2440" TVONTUIDriver --dword 1 --key DebugSettings
qlmhost data get "Plan 2440" TVONTUIDriver --key DebugSettings

step "The driver library, loaded as the spooler loads it, answers at once"
qlmhost driver "Plan 2440"

step "The layout of the settings record"
qlmhost devmode layout >"$home/layout.txt"
head -5 "$home/layout.txt"
echo "   ... (qlmhost devmode layout lists all fields)"

step "A fresh record for the queue: defaults, 400 dpi, and dmxBiDi 1 from the TCP/IP monitor"
qlmhost devmode new "Plan 2440"
