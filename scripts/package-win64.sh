#!/usr/bin/env bash
# Builds the Windows install package: build/win64/package/ with the INF, QLMUIDrv.dll and
# QLMRes.DLL, what Add Printer's "Have Disk" takes. The INF is kept as UTF-8 in package/ and
# written here as UTF-16, which setupapi reads with the model names' non-ASCII characters.
# Fails when the INF's models differ from the driver's alias table.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build-win64.sh >/dev/null

# The alias table's names, as the INF must list them (\uXXXX escapes turned into characters).
aliases=$(awk '/^const TVOPrinterAlias kAliases\[\] = \{/{on=1; next} on && /^};/{on=0} on' \
            driver/devmode/tvomodels.cpp |
          grep -o 'TEXT("[^"]*")' | sed 's/^TEXT("\(.*\)")$/\1/' |
          perl -CS -pe 's/\\u([0-9A-Fa-f]{4})/chr(hex($1))/ge')
models=$(awk '/^\[Tarvo\.NTamd64\]/{on=1; next} /^\[/{on=0} on && /^"/' package/QLMUIDrv.inf |
         tr -d '\r' | sed 's/^"\(.*\)" *=.*$/\1/')
if [ "$aliases" != "$models" ]; then
  echo "package/QLMUIDrv.inf and the driver's alias table list different models:" >&2
  diff <(echo "$aliases") <(echo "$models") >&2 || true
  exit 1
fi

out=build/win64/package
rm -rf "$out"
mkdir -p "$out"
{ printf '\xff\xfe'; iconv -f UTF-8 -t UTF-16LE package/QLMUIDrv.inf; } >"$out/QLMUIDrv.inf"
cp build/win64/driver/QLMUIDrv.dll build/win64/resources/QLMRes.DLL "$out/"
echo "package: $out ($(echo "$models" | wc -l) models)"
