# Plan 318p: one roll, an old firmware level, no finisher, no fonts or stamps of its own.

id = Tarvo Plan Output System 318p
firmware = 9.5
memory = 16777216
display-lines = 2
display-character-size = 16
scanner = NONE
modem = NONE
finisher-type = NONE

roll1 = ROLL_36, FULL, PAPER
manual = ANY, NONE, PAPER

accounting = DISABLED

status-code = 10001
status-display = READY
online = TRUE
