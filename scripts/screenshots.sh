#!/usr/bin/env bash
# Pictures of every tab and dialog, taken under Wine and Xvfb, one PNG each in
# docs/screenshots/. The driver is installed from its package into a prefix of its own; a
# queue on a network port where no printer answers brings up the address dialog.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh wine64 wine fonts-wine xvfb imagemagick
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

# shot FILE=NAME... < CASE: runs the script case (its "#: set" lines give the record) under Wine
# and keeps the pictures named: FILE is page-TEMPLATE for the sheet showing that page, window-N
# for the Nth other window the script met (dialogs, message boxes), in the order met.
shot() {
  local pair file name
  cat >"$work/case.sheet"
  rm -f "$work/shots/"*.bmp
  QLMWIN_SNAPSHOTS="$(winepath -w "$work/shots")" \
    _qlmwin sheet --case "$(winepath -w "$work/case.sheet")" >/dev/null || true
  for pair in "$@"; do
    file=${pair%%=*} name=${pair#*=}
    [ -e "$work/shots/$file.bmp" ] || { echo "no picture of $name ($file)" >&2; exit 1; }
    convert "$work/shots/$file.bmp" "docs/screenshots/$name.png"
  done
}
mkdir -p docs/screenshots

# The document sheet, every tab; the paper tab is the picture of the sheet itself.
shot page-101=document-sheet page-102=job-tab page-103=graphics-tab page-104=rendering-tab \
  page-105=device-tab page-106=about-tab <<'EOF'
tab 101
tab 102
tab 103
tab 104
tab 105
tab 106
ok
EOF
shot page-106=device-sheet <<'EOF'
#: sheet device
ok
EOF
# A network queue whose printer does not answer asks for its address before the sheet opens.
shot window-1=address-dialog <<'EOF'
#: printer Plan 2440 IP
cancel
cancel
EOF

# The paper tab's dialogs.
shot window-1=customise-dialog window-2=user-media-dialog window-3=margins-dialog \
  window-4=about-dialog <<'EOF'
tab 101
select 1009 0xFFFFFFFF
click 1234
type 1229 Site plan A1
type 1063 23.39
type 1052 33.11
click 1232
click 1233
cancel
click 1083
cancel
click 1001
ok
cancel
EOF

# The job tab's dialogs, each with a record that gives it something to show.
shot window-1=finishing-dialog window-2=label-dialog window-3=stamp-dialog \
  window-4=nesting-dialog <<'EOF'
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
#: set dmxLabel 2
#: set dmxLabelText Plot: <DOCUMENT> <DATE>
#: set dmxStamp 2
#: set dmxRasterStampList DRAFT|COPY|FINAL
#: set dmxDefaultStamp COPY
#: set dmxPlotNest 2
#: set dmxPlotNestMargin 13
tab 102
click 1122
cancel
click 1123
cancel
click 1125
cancel
click 1124
cancel
cancel
EOF

# The device tab's dialogs: the rolls, and accounting by numbers (firmware below 6) and by
# texts.
shot window-1=rolls-dialog window-2=account-dialog <<'EOF'
#: set dmxFirmwareRevision 5
#: set dmxAccountingEnable 1
tab 105
click 1100
cancel
click 1120
cancel
cancel
EOF
shot window-1=jba-dialog <<'EOF'
#: set dmxAccountingEnable 1
#: set dmxRememberAccount 1
#: set dmxJBAUser jdoe
#: set dmxJBAAcct Project 7
tab 105
click 1120
cancel
cancel
EOF
ls docs/screenshots
