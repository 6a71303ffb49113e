#!/usr/bin/env bash
# Figures of the window as a pilot meets it: time from start to its first paint, and peak
# resident memory after search, load and pick of XWHL, which stands last in a generated 40 MB
# airport file behind 1,600 copies of itself under other idents. Runs the window under its own
# Xvfb, drives it with xdotool.
#   bench/window_figures.sh [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
for tool in Xvfb xdotool xwd awk; do
  command -v "$tool" >/dev/null || { echo "window_figures: $tool is missing" >&2; exit 2; }
done

work=$(mktemp -d)
xvfb=""
cleanup() {
  [ -n "$xvfb" ] && kill "$xvfb" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT

# The program looks for its data beside itself.
cp -r sample/. "$work/"
cp "$build/velmora" "$work/"
big="$work/FSXFiles/big.txt"
awk -v target=40000000 '
  { sub(/\r$/, "") }
  NR >= 3 && NR <= 757 { block = block $0 "\r\n" }
  END {
    printf "<?xml version=\"1.0\"?>\r\n<FSData>\r\n" > FILENAME_OUT
    for (n = 0; written < target; ++n) {
      copy = block
      sub(/ident="XWHL"/, sprintf("ident=\"Y%04d\"", n), copy)
      printf "%s", copy > FILENAME_OUT
      written += length(copy)
    }
    printf "%s</FSData>\r\n", block > FILENAME_OUT
  }' FILENAME_OUT="$big" sample/FSXFiles/sample_west.txt
printf 'XWHL;Whitlow Harbor International;Westmark;big.txt\r\n' >"$work/Arpt index.txt"
echo "airport file: $(($(stat -c %s "$big") / 1000000)) MB"

exec 3<> <(:)
Xvfb -displayfd 3 -screen 0 1280x800x24 >/dev/null 2>&1 &
xvfb=$!
read -r -t 10 display <&3
export DISPLAY=:$display

# The window writes the time of its first paint when asked (VELMORA_PAINT_TIME).
starts=()
for run in 1 2 3 4 5; do
  t0=$(date +%s%N)
  VELMORA_PAINT_TIME=1 "$work/velmora" 2>"$work/stderr" &
  pid=$!
  for _ in $(seq 1000); do
    grep -q '^first paint ' "$work/stderr" && break
    sleep 0.01
  done
  t1=$(awk '/^first paint / { print $3; exit }' "$work/stderr")
  [ -n "$t1" ] || { echo "window_figures: the window never painted" >&2; exit 1; }
  starts+=($(((t1 - t0) / 1000000)))
  if [ "$run" -lt 5 ]; then
    kill "$pid"
    wait "$pid" 2>/dev/null || true
  fi
done
idle=$(awk '/VmRSS/ { print int($2 / 1024) }' "/proc/$pid/status")

# Search, Tab to the chart button, load, Tab on to the list and pick its first row.
xdotool type --delay 20 XWHL
xdotool key Return
sleep 1
xdotool key Tab Tab Tab Return
sleep 3
xdotool key Tab Tab Tab Tab Down
sleep 1
# SHOT=file.png keeps a picture of the window at the end, to see that the road was taken.
if [ -n "${SHOT:-}" ]; then xwd -root -silent | convert xwd:- "$SHOT"; fi
peak=$(awk '/VmHWM/ { print int($2 / 1024) }' "/proc/$pid/status")
kill "$pid"
wait "$pid" 2>/dev/null || true

sorted=($(printf '%s\n' "${starts[@]}" | sort -n))
echo "start to first paint: median ${sorted[2]} ms (runs: ${starts[*]} ms)"
echo "resident memory: ${idle} MB after start, peak ${peak} MB after load and pick of XWHL"
