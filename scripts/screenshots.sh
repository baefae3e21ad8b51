#!/usr/bin/env bash
# Pictures of every tab and dialog that exists, taken under Wine and Xvfb, one PNG each in
# docs/screenshots/. The driver is installed from its package into a prefix of its own; a
# queue on a network port where no printer answers brings up the address dialog.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh wine64 wine xvfb imagemagick
bash scripts/package-win64.sh >/dev/null

work=$PWD/build/screenshots
rm -rf "$work"
mkdir -p "$work/shots"
. scripts/wine-prefix.sh "$work/prefix"
_qlmwin() { qlmwin "$@" | tr -d '\r'; }

# No printer listens on this loopback address, so the first opening asks for one.
printf 'Plan 2440\tTarvo Plan Output System 2440\nPlan 2440 IP\tTarvo Plan Output System 2440\tIP_127.0.0.250\n' \
  >"$work/queues.list"
_qlmwin port add IP_127.0.0.250 >/dev/null
_qlmwin install --inf build/win64/package/QLMUIDrv.inf --queues "$work/queues.list" >/dev/null

# shot NAME PRINTER SHEET-ARGS... < SCRIPT: the first window the script meets, as NAME.png.
shot() {
  local name=$1 printer=$2
  shift 2
  rm -f "$work/shots/"*.bmp
  QLMWIN_SNAPSHOTS="$(winepath -w "$work/shots")" _qlmwin sheet "$printer" "$@" --script - >/dev/null || true
  [ -e "$work/shots/01.bmp" ] || { echo "no picture of $name" >&2; exit 1; }
  convert "$work/shots/01.bmp" "docs/screenshots/$name.png"
}
# shot_case NAME < CASE: a script case (its "#: set" lines give the record), pictured at the
# last window its script meets; the start page is whichever tab was open last.
shot_case() {
  local name=$1 last
  cat >"$work/$name.sheet"
  rm -f "$work/shots/"*.bmp
  QLMWIN_SNAPSHOTS="$(winepath -w "$work/shots")" _qlmwin sheet --case "$(winepath -w "$work/$name.sheet")" >/dev/null || true
  last=$(ls "$work/shots/"*.bmp 2>/dev/null | tail -n 1)
  [ -n "$last" ] || { echo "no picture of $name" >&2; exit 1; }
  convert "$last" "docs/screenshots/$name.png"
}
mkdir -p docs/screenshots
shot document-sheet "Plan 2440" <<<'ok'
shot device-sheet "Plan 2440" --device <<<'ok'
shot address-dialog "Plan 2440 IP" <<<$'cancel\ncancel'
shot_case job-tab <<<$'tab 102\nok'
shot_case finishing-dialog <<'EOF'
#: set dmxFinisherType 5
#: set dmxFinisher.Model Folder 4000
#: set dmxFinisher.Version 1.2
#: set dmxFinisher.numBins 2
#: set dmxFinisher.numPrograms 2
#: set dmxFinisher.programs[0].name Plain fold
#: set dmxFinisher.programs[0].fanFold 2
#: set dmxFinisher.programs[0].width 190
#: set dmxFinisher.programs[0].length 297
#: set dmxFinisher.programs[1].name Binder
#: set dmxFinisher.programs[1].fanFold 5
#: set dmxFinisher.programs[1].crossFold 2
#: set dmxFinisher.programs[1].width 210
#: set dmxFinisher.programs[1].length 297
#: set dmxFinisher.programs[1].margin 20
#: set dmxFinisher.programs[1].punch 4
#: set dmxFinisher.programs[1].tab 3
#: set dmxFinishing 9
#: set dmxFinishProgram 1
tab 102
click 1122
cancel
cancel
EOF
shot_case label-dialog <<'EOF'
#: set dmxLabel 2
#: set dmxLabelText Plot:<DOCUMENT> <DATE>
tab 102
click 1123
cancel
cancel
EOF
shot_case stamp-dialog <<'EOF'
#: set dmxStamp 2
#: set dmxRasterStampList DRAFT|COPY|FINAL
#: set dmxDefaultStamp COPY
tab 102
click 1125
cancel
cancel
EOF
shot_case nesting-dialog <<'EOF'
#: set dmxPlotNest 2
#: set dmxPlotNestMargin 13
tab 102
click 1124
cancel
cancel
EOF
ls docs/screenshots
