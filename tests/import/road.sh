#!/usr/bin/env bash
# The sample in every source style of tests/import/layouts.cpp, imported with velmora-import,
# must chart exactly as the sample itself: the golden road on each imported data folder.
#   road.sh VELMORA_LAYOUTS VELMORA_IMPORT VELMORA_CHART SAMPLE_DIR
set -u
layouts=$1 import=$2 chart=$3 sample=$4
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
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
done
exit $failed
