#!/usr/bin/env bash
# Checks that a built DLL exports every name of its .def file at the ordinal the file gives,
# and nothing else, as the loader reads the export table (objdump -p).
set -euo pipefail
dll=$1
def=$2
objdump=${OBJDUMP:-x86_64-w64-mingw32-objdump}

expected=$(awk '/^EXPORTS/{on=1; next} on && NF>=2 {sub("@","",$2); print $2, $1}' "$def" | sort -n)
# "[Ordinal/Name Pointer] Table" rows are "[index] name"; the ordinal is index + base.
actual=$("$objdump" -p "$dll" | awk '
  /Export Address Table -- Ordinal Base/ {base=$NF}
  /\[Ordinal\/Name Pointer\] Table/ {on=1; next}
  on && /^[[:space:]]*$/ {on=0}
  on && match($0, /\[ *[0-9]+\] +[A-Za-z_][A-Za-z0-9_]*/) {
    s=substr($0, RSTART, RLENGTH); gsub(/[\[\]]/, " ", s); split(s, f, " ");
    print f[1] + base, f[2] }' | sort -n)

if [ "$expected" != "$actual" ]; then
  echo "export table of $dll differs from $def:" >&2
  diff <(echo "$expected") <(echo "$actual") >&2 || true
  exit 1
fi
echo "exports of $(basename "$dll"): $(echo "$actual" | wc -l) names at their ordinals"
