# Plan 2440: the demo's plotter. Two rolls loaded, the sheet feed empty, a folder with three
# programs. The format is described in docs/pjlsim.md.

id = Tarvo Plan Output System 2440
firmware = 12.2
memory = 67108864
display-lines = 2
display-character-size = 16
scanner = NONE
modem = NONE
finisher-type = GERA_ISO
config-line = IN TRAYS [1 ENUMERATED]
config-line = \tINTRAY1

# Rolls: size (keyword or the driver's name), state, media type.
roll1 = ROLL_36, FULL, PAPER
roll2 = Roll 24in, LOW, "PRESENTATION_360"
roll3 = ROLL_A0, EMPTY, FILM
manual = ANY, NONE, PAPER

accounting = ENABLED
label-font = HELV
default-stamp = DRAFT
variables-line = COPIES=1 [2 RANGE]
variables-line = \t1
variables-line = \t999

font = HELV, Helvetica, size=28456
font = TIMR, Times Roman, size=31220
font = COUR, Courier, size=19876, rw=RW, delete=Y
stamp = DRAFT, size=4096
stamp = CONFIDENTIAL, size=6144
stamp = APPROVED, size=5120, rw=RW, delete=Y

status-code = 10001
status-display = READY
online = TRUE

finisher.model = Gera Folder 2400
finisher.version = 2.1
finisher.bins = 2
finisher.fanfolds = FULL_FRONT_END_LEFT, MIN_COMP_ENDLESS
finisher.crossfolds = Z_BACK_FROM_TOP, C_FORWARD_FROM_TOP
finisher.punches = PUNCH_2, PUNCH_4
finisher.tabs = TAB
finisher.min-margin = 0
finisher.max-margin = 40
finisher.program = A4_DIN, fanfold=FULL_FRONT_END_LEFT, crossfold=Z_BACK_FROM_TOP, width=210, length=297, margin=20, punch=PUNCH_2, tab=TAB, bins=1, maxlength=3000, delivery=FACEUP, title=1, edge=LONGEDGE
finisher.program = A4_ENDLESS, fanfold=MIN_COMP_ENDLESS, crossfold=NONE, width=210, length=297, margin=20, punch=NONE, tab=NONE, bins=2, maxlength=15000, delivery=FACEDOWN, title=0, edge=SHORTEDGE
finisher.program = ANSI_A_WALLET, fanfold=FULL_FRONT_END_LEFT, crossfold=C_FORWARD_FROM_TOP, width=216, length=279, margin=25, punch=PUNCH_4, tab=NONE, bins=1, maxlength=5000, delivery=FACEUP, title=1, edge=LONGEDGE
