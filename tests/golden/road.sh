#!/usr/bin/env bash
# The sample's whole road through velmora-chart: every airport, every approach row, zoom, pan
# and reset, and a few bad roads. Traces and states must never change; this compares them with
# the expected ones, or writes them anew with --write.
#   road.sh VELMORA_CHART EXPECTED_DIR [--write]
# With VELMORA_DATA set, the sample's road runs on that data folder instead of the one beside
# the program.
set -u
bin=$1
expected=$2
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

data=${VELMORA_DATA:-}
run() {
  local name=$1
  shift
  "$bin" ${data:+--data "$data"} --trace "$out/$name.trace" --state "$out/$name.state" "$@" >/dev/null 2>&1
}
for code in ZTAM XWHL XPBN XAMO XRKD; do
  run "$code-load" "type:$code" search load plus plus minus click:2000,3000 reset minus minus \
    minus click:12000,9000
  for k in 0 1 2 3 4; do
    run "$code-pick$k" "type:$code" search load "pick:$k" plus minus minus click:2000,3000 \
      click:14000,100 reset minus "pick:$k"
  done
done
run lower type:xwhl search load pick:1
run spaced "type:X P B N" search load
run unknown type:NOPE search load click:100,100 plus
run click-first click:500,500 type:ZTAM search click:10,10 load
run approach --airport XAMO --approach "VOR 0"

# The casebook: one purpose-built field with the cases of the sheet's and the overlay's layout
# (title block, list rows of odd types and slots, a first VOR that takes the runways' pen,
# every zoom, a pan, tracks of several lengths); its data is always its own.
data=$(dirname "$0")/casebook
pluses=(plus plus plus plus plus plus plus)
minuses=("${pluses[@]/plus/minus}" "${pluses[@]/plus/minus}" minus minus minus)
run casebook-load type:XCAS search load
run casebook-zoom-in type:XCAS search load "${pluses[@]}"
run casebook-zoom-out type:XCAS search load "${minuses[@]}"
run casebook-pan type:XCAS search load plus click:8000,4500 minus click:6000,6000
# Tracks of five and six fixes, GPS and ILS: the lines turn dotted by their count.
for k in 0 1 2 3; do
  run "casebook-pick$k" type:XCAS search load "pick:$k"
done

if [ "${3:-}" = --write ]; then
  rm -rf "$expected" && mkdir -p "$expected" && cp "$out"/* "$expected"/
  echo "wrote $(ls "$expected" | wc -l) files to $expected"
  exit 0
fi
if diff -r "$expected" "$out" >"$out.diff"; then
  echo "$(ls "$expected" | wc -l) traces and states as expected"
  rm -f "$out.diff"
  exit 0
fi
head -n 40 "$out.diff"
echo "traces or states changed (full diff: $out.diff)"
exit 1
