# Sourced by the scripts that run the Windows build: a fresh 64-bit Wine prefix at $1 with an
# X display of its own, both ended when the script exits (only what was started here: the
# prefix's wineserver and that X server). The prefix is removed too, unless QLM_WINE_KEEP is set.
#   . scripts/wine-prefix.sh PREFIX
qlm_wine_prefix=$1
rm -rf "$qlm_wine_prefix"
export WINEPREFIX=$qlm_wine_prefix WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree,mshtml="
qlm_xvfb_pid=""
qlm_wine_cleanup() {
  timeout 20 wineserver -k 2>/dev/null || true
  [ -n "$qlm_xvfb_pid" ] && kill "$qlm_xvfb_pid" 2>/dev/null || true
  [ -z "${QLM_WINE_KEEP:-}" ] && rm -rf "$qlm_wine_prefix"
  return 0
}
trap qlm_wine_cleanup EXIT

# A display of our own: the first number with no X server behind it.
qlm_display=90
while [ -e "/tmp/.X11-unix/X$qlm_display" ] || [ -e "/tmp/.X$qlm_display-lock" ]; do
  qlm_display=$((qlm_display + 1))
done
Xvfb ":$qlm_display" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
qlm_xvfb_pid=$!
export DISPLAY=":$qlm_display"
timeout 180 wineboot -i >/dev/null 2>&1
# Windows keeps its fonts, Marlett's glyphs among them, in the Fonts folder; Debian's Wine
# leaves that folder empty and falls back to other faces, so its own fonts go there.
cp /usr/share/wine/fonts/*.ttf "$WINEPREFIX/drive_c/windows/Fonts/" 2>/dev/null || true
timeout 20 wineserver -p 2>/dev/null || true

qlmwin() { timeout "${QLM_WINE_TIMEOUT:-180}" wine build/win64/tools/qlmwin/qlmwin.exe "$@"; }
