#!/usr/bin/env bash
# Runs one script case on the host as ctest does: a home of its own with the queues of
# queues.list, then qlmhost's sheet (or probe) command on the case, from the top of the source
# tree. The command's exit code is the verdict: 1 when a script line or an expected outcome
# fails.
#   run-case.sh QLMHOST HOME CASE
set -euo pipefail
qlmhost=$(realpath "$1") home=$(realpath -m "$2") case=$(realpath "$3")
rm -rf "$home"
mkdir -p "$home"
here=$(dirname "$0")
while IFS=$'\t' read -r queue driver port; do
  case "$queue" in ''|'#'*) continue ;; esac
  # A network port is one of the standard TCP/IP monitor's.
  case "${port:-}" in IP_*)
    "$qlmhost" --home "$home" port add "$port" --monitor TCPMON.DLL >/dev/null ;;
  esac
  "$qlmhost" --home "$home" printer add "$queue" --driver "$driver" --port "${port:-LPT1:}" >/dev/null
done <"$here/queues.list"
kind=sheet
[ "${case##*.}" = probe ] && kind=probe
# A script's paths (file PATH) are the source tree's, as in the Wine run.
cd "$here/../.."
exec "$qlmhost" --home "$home" "$kind" --case "$case" --dump
