#!/usr/bin/env bash
# The Windows programs under Wine, as unpacked from the zip: velmora-chart.exe down the golden
# road (byte for byte the Linux traces and states), the window down a pilot's road with real key
# presses and clicks at 96 and 144 DPI (screenshots in BUILD/screenshots), then the installer
# in and out again.
#   tests/windows/road.sh BUILD_DIR      (after ./build.sh windows; WINE and WINEPREFIX set)
set -euo pipefail
cd "$(dirname "$0")/../.."
build=$1
name=$(sed -n 's/^set(CPACK_PACKAGE_FILE_NAME "\(.*\)")$/\1/p' "$build/CPackConfig.cmake")
app="$PWD/$build/stage/$name"
shots="$PWD/$build/screenshots"
work=$(mktemp -d)
pids=()
cleanup() {
  wineserver -k 2>/dev/null || true
  for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "windows road: $*" >&2
  exit 1
}

# 1. The golden road: the traces and states of velmora-chart.exe, headless.
printf '#!/bin/sh\nexec "%s" "%s/velmora-chart.exe" "$@" </dev/null\n' "$WINE" "$app" \
  >"$work/velmora-chart"
chmod +x "$work/velmora-chart"
(unset DISPLAY && tests/golden/road.sh "$work/velmora-chart" tests/golden/expected) ||
  fail "velmora-chart.exe's traces or states differ from Linux"

# 2. The window, on its own X server with a window manager. Wine's session started headless
# would keep its windows off any display: end it first.
wineserver -k 2>/dev/null || true
exec 3<> <(:)
Xvfb -displayfd 3 -screen 0 1920x1200x24 -fbdir "$work" >/dev/null 2>&1 &
pids+=($!)
read -r -t 10 display <&3 || fail "Xvfb did not start"
export DISPLAY=:$display
openbox >/dev/null 2>&1 &
pids+=($!)
mkdir -p "$shots"
shot() { convert "xwd:$work/Xvfb_screen0" "$shots/$1.png"; }

# Client coordinates of a point given in twips: 15 twips to a pixel at 96 DPI.
at() { echo $(($1 * dpi / 1440)) $(($2 * dpi / 1440)); }
# The window, found anew before each use: Wine may replace its X window while it starts.
window() { xdotool search --onlyvisible --class 'velmora\.exe' 2>/dev/null | tail -n 1; }
click() {
  xdotool mousemove --window "$(window)" $(at "$1" "$2") click 1
  sleep 2
}

# The profile pane hidden, as the window keeps it between runs: the form alone must fit the
# screen at 144 DPI, and its size is what is checked.
"$WINE" reg add 'HKCU\Software\Velmora\velmora' /v profileShown /t REG_SZ /d false /f \
  >/dev/null 2>&1
for dpi in 96 144; do
  "$WINE" reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$dpi" /f \
    >/dev/null 2>&1
  "$WINE" "$app/velmora.exe" </dev/null >/dev/null 2>&1 &
  pids+=($!)
  for _ in $(seq 60); do [ -n "$(window)" ] && break; sleep 1; done
  [ -n "$(window)" ] || fail "velmora.exe showed no window within a minute"
  sleep 4
  read -r width height < <(xdotool getwindowgeometry "$(window)" |
    awk -F'[ x]+' '/Geometry/ { print $3, $4 }')
  # The form is 16815 x 10470 twips.
  want_w=$((16815 * dpi / 1440)) want_h=$((10470 * dpi / 1440))
  echo "window at $dpi DPI: ${width}x${height} pixels (form: ${want_w}x${want_h})"
  [ $((width - want_w)) -le 2 ] && [ $((want_w - width)) -le 2 ] &&
    [ $((height - want_h)) -le 2 ] && [ $((want_h - height)) -le 2 ] ||
    fail "the window is ${width}x${height} at $dpi DPI, not ${want_w}x${want_h}"
  # The road: the code typed into the search box, Enter, the chart button, the approach list
  # opened and its second row picked, zoom in.
  click 15127 787
  xdotool type --delay 60 XWHL
  xdotool key Return
  sleep 2
  click 15667 1927
  sleep 3
  shot "$dpi-loaded"
  # The list's arrow button, at its right end.
  click 16545 2722
  shot "$dpi-list-open"
  xdotool key Down Return
  sleep 3
  click 15247 6367
  sleep 2
  shot "$dpi-picked-zoomed"
  click 16147 9787  # EXIT
  wineserver -w
done
echo "screenshots: $(ls "$shots" | tr '\n' ' ')"

# 3. The installer, silent, in and out again.
installer="$PWD/$build/$name.exe"
target="$WINEPREFIX/drive_c/Program Files/Velmora"
"$WINE" "$installer" /S </dev/null >/dev/null 2>&1
wineserver -w
for f in velmora.exe velmora-chart.exe platforms/qwindows.dll sample/vor.nav Uninstall.exe; do
  [ -e "$target/$f" ] || fail "the installer left out $f"
done
start_menu="$WINEPREFIX/drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/Velmora"
[ -e "$start_menu/Velmora.lnk" ] || fail "the installer made no Start-menu entry"
# Installed, the programs find no data beside them: the road's last chart on the zip's data.
"$WINE" "$target/velmora-chart.exe" --data "$app" --airport XAMO --approach "VOR 0" \
  --trace "$work/installed.trace" </dev/null >/dev/null 2>&1 ||
  fail "the installed velmora-chart.exe failed"
cmp "$work/installed.trace" tests/golden/expected/approach.trace ||
  fail "the installed velmora-chart.exe draws XAMO VOR 0 otherwise"
"$WINE" "$target/Uninstall.exe" /S </dev/null >/dev/null 2>&1
wineserver -w
for _ in $(seq 30); do [ -e "$target/velmora.exe" ] || break; sleep 1; done
[ ! -e "$target/velmora.exe" ] || fail "the uninstaller left velmora.exe"
[ ! -e "$start_menu" ] || fail "the uninstaller left the Start-menu entry"
echo "installer: installed, charted XAMO, uninstalled"
