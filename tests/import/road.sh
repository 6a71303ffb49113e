#!/usr/bin/env bash
# The sample in every source style of tests/import/layouts.cpp, imported with velmora-import,
# must chart exactly as the sample itself: the golden road on each imported data folder, and
# the profile of every approach (constraints and altitudes of the legs come along).
#   road.sh VELMORA_LAYOUTS VELMORA_IMPORT VELMORA_CHART SAMPLE_DIR
set -u
layouts=$1 import=$2 chart=$3 sample=$4
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
approaches=("XWHL:ILS 16L" "XWHL:ILS 34R" "XWHL:VORDME 9" "XWHL:GPS 27" "XRKD:NDB 20"
  "ZTAM:ILS 22" "ZTAM:VOR 04" "XAMO:ILS 7" "XAMO:VOR 0")
profiles() {  # DATA_DIR
  for a in "${approaches[@]}"; do
    "$chart" --data "$1" --airport "${a%%:*}" --approach "${a#*:}" --profile-json - 2>&1
  done
}
profiles "$sample" >"$work/sample.profiles"
for style in $("$layouts" --list); do
  mapfile -t sources < <("$layouts" "$style" "$work/$style/sources")
  data=$work/$style/data
  # The navaid style brings its VORs along; the others chart with the sample's list.
  [ "$style" = navaids-apart ] || { mkdir -p "$data" && cp "$sample/vor.nav" "$data/"; }
  if ! "$import" --data "$data" "${sources[@]}" 2>"$work/$style/import.log"; then
    echo "$style: velmora-import failed:"; cat "$work/$style/import.log"; failed=1; continue
  fi
  if VELMORA_DATA=$data "$here/../golden/road.sh" "$chart" "$here/../golden/expected" \
    >"$work/$style/road.log"; then
    echo "$style: $(tail -n 1 "$work/$style/road.log")"
  else
    echo "$style: charts differ from the sample's"; cat "$work/$style/road.log"; failed=1
  fi
  if ! profiles "$data" | diff "$work/sample.profiles" - >"$work/$style/profiles.diff"; then
    echo "$style: profiles differ from the sample's"; head -n 20 "$work/$style/profiles.diff"
    failed=1
  fi
done
exit $failed
