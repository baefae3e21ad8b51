# Plan 3320A: six rolls of mixed media, a sheet feed, a simple folder with one program.

id = Tarvo Plan Output System 3320A
firmware = 12.5
memory = 134217728
display-lines = 4
display-character-size = 20
scanner = 4126
modem = MODEM
finisher-type = GFI

roll1 = ROLL_36, FULL, PAPER
roll2 = ROLL_36, FULL, "BOND"
roll3 = ROLL_24, LOW, VELLUM
roll4 = ROLL_A0+, FULL, "WHITE_MATTE_FILM_360"
roll5 = ROLL_A1, FULL, "PHOTOGLOSSY_PAPER_360"
roll6 = ROLL_42, EMPTY, ""
manual = ANY, FULL, PAPER

accounting = OPTIONAL
label-font = UNIV
default-stamp = COPY

font = UNIV, Univers, size=30112
font = HELV, Helvetica, size=28456
stamp = COPY, size=2048
stamp = PRELIMINARY, size=3072

status-code = 10001
status-display = READY
online = TRUE

finisher.model = GFI Fold 1
finisher.version = 0.0
finisher.bins = 1
finisher.fanfolds = FULL_BACK_END_LEFT
finisher.crossfolds = NONE
finisher.punches =
finisher.tabs =
finisher.max-margin = 30
finisher.program = ANSI_FOLD, fanfold=FULL_BACK_END_LEFT, width=216, length=279, margin=30, maxlength=10000
