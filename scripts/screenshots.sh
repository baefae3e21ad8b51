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

# shot "NAME..." PRINTER SHEET-ARGS... < SCRIPT: the windows the script meets, and the sheet
# once for each page shown, in that order, one NAME.png each; a NAME of - is passed over.
shot() {
  local names=$1 printer=$2 n=0 name
  shift 2
  rm -f "$work/shots/"*.bmp
  QLMWIN_SNAPSHOTS="$(winepath -w "$work/shots")" _qlmwin sheet "$printer" "$@" --script - >/dev/null || true
  for name in $names; do
    n=$((n + 1))
    [ "$name" = - ] && continue
    local bmp
    bmp=$(printf '%s/shots/%02d.bmp' "$work" "$n")
    [ -e "$bmp" ] || { echo "no picture of $name" >&2; exit 1; }
    convert "$bmp" "docs/screenshots/$name.png"
  done
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
# The sheet opens on its first page, the paper tab.
shot "document-sheet graphics-tab rendering-tab" "Plan 2440" <<<$'tab 103\ntab 104\nok'
shot device-sheet "Plan 2440" --device <<<'ok'
shot address-dialog "Plan 2440 IP" <<<$'cancel\ncancel'
# The paper tab's dialogs.
shot "- customise-dialog" "Plan 2440" <<<$'tab 101\nselect 1009 0xFFFFFFFF\ncancel\ncancel'
shot "- - user-media-dialog" "Plan 2440" <<<$'tab 101\nselect 1009 0xFFFFFFFF\nclick 1234\nclick 1233\ncancel\ncancel'
shot "- margins-dialog" "Plan 2440" <<<$'tab 101\nclick 1083\ncancel\ncancel'
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
