#!/usr/bin/env bash
# Runs every fuzz target for SECONDS each, seeded from sample/, and prints inputs per second.
#   run.sh BUILD_DIR [SECONDS]
# A crash, a leak or a sanitizer finding stops with a non-zero exit; the input that did it is
# left in BUILD_DIR/fuzz-crashes/.
set -euo pipefail
cd "$(dirname "$0")/../.."
build=$1
seconds=${2:-60}
seeds=$build/fuzz-seeds
work=$build/fuzz-corpus
crashes=$build/fuzz-crashes
rm -rf "$seeds"
mkdir -p "$seeds"/{airport,index,vor,numbers,import,library} "$work"/{airport,index,vor,numbers,import,library} "$crashes"

# Each airport of each sample file, and the index with each code in it: "CODE\n" then bytes.
for file in sample/FSXFiles/*.txt; do
  for code in $(grep -o '<Airport ident="[^"]*"' "$file" | cut -d'"' -f2); do
    { echo "$code"; cat "$file"; } >"$seeds/airport/$code-$(basename "$file")"
    { echo "$code"; cat "sample/Arpt index.txt"; } >"$seeds/index/$code"
  done
done
{ echo; cat sample/vor.nav; } >"$seeds/vor/vor.nav"
# The importer: the sample in the reader's layout, with single quotes, on one line, and a
# decompiler's layout with decimal degrees, units and navaids outside the airport.
for file in sample/FSXFiles/*.txt; do
  base=$(basename "$file" .txt)
  { echo; cat "$file"; } >"$seeds/import/$base"
  { echo; tr '"' "'" <"$file"; } >"$seeds/import/$base-quotes"
  { echo; tr -d '\r' <"$file" | tr '\n' ' '; } >"$seeds/import/$base-one-line"
done
cat >"$seeds/import/decompiled" <<'XML'

<?xml version="1.0" encoding="UTF-8"?>
<FSData version="9.0">
  <Airport
      lat="49.2018527537584"
      lon="-123.16384524107"
      alt="204.216M"
      magvar="-21"
      name="Sea Isle"
      ident="XSEA">
    <TaxiwayPoint index="0" type="NORMAL" lat="49.2" lon="-123.1"/>
    <Runway
        lat="N49* 12' 6.67&quot;"
        lon="-123.16"
        length="1193.9M"
        width="150F"
        number="8"
        designator="NONE"/>
    <Start type="RUNWAY" lat="49.2" lon="-123.2" heading="80" number="8" designator="NONE"/>
    <Approach type="ILS" runway="8" designator="NONE">
      <ApproachLegs>
        <Leg type="IF" fixType="TERMINAL_WAYPOINT" fixIdent="ABBOT" rho="14264.05M"
             magneticCourse="153" altitude1="1694.688M" altitude2="3000"/>
      </ApproachLegs>
      <Transition transitionType="FULL" fixType="NDB" fixIdent="XN">
        <TransitionLegs><Leg type="IF" fixIdent="XN" rho="2N"/></TransitionLegs>
      </Transition>
    </Approach>
  </Airport>
  <Waypoint waypointIdent="ABBOT" lat="49.4" lon="-123.0"/>
  <Ndb ident="XN" lat="49.5" lon="-123.1" frequency="350.0" name="X"/>
  <Vor ident="XV" lat="49.3" lon="-123.3" type="HIGH" frequency="113.00" name="X V"/>
</FSData>
XML
# A scenery library as FSX writes it, and the same in UTF-16 and with LF line ends.
printf '[General]\r\nTitle=FS World\r\n\r\n[Area.001]\r\nTitle=Default Terrain\r\nLocal=Scenery\\World\r\nLayer=1\r\nActive=TRUE\r\nRequired=TRUE\r\n\r\n[Area.002]\r\nTitle=Addon\r\nLocal=C:\\Addon Scenery\\LEAR\r\nLayer=2\r\nActive=FALSE\r\n' >"$seeds/library/fsx"
{ printf '\xff\xfe'; iconv -f UTF-8 -t UTF-16LE "$seeds/library/fsx"; } >"$seeds/library/utf16"
tr -d '\r' <"$seeds/library/fsx" >"$seeds/library/lf"
# Every quoted value of the samples and every field of the VOR list, one a file.
n=0
{ grep -oh '="[^"]*"' sample/FSXFiles/*.txt | cut -d'"' -f2; tr ';' '\n' <sample/vor.nav; } |
  sort -u | while IFS= read -r value; do
  n=$((n + 1))
  printf '%s' "$value" >"$seeds/numbers/$n"
done

status=0
for target in airport index vor numbers import library; do
  log=$build/fuzz-$target.log
  if ! "$build/tests/fuzz/${target}_fuzz" -max_total_time="$seconds" -print_final_stats=1 \
    -artifact_prefix="$crashes/$target-" -rss_limit_mb=2048 "$work/$target" "$seeds/$target" \
    >"$log" 2>&1; then
    echo "fuzz $target: FAILED, see $log"
    tail -n 30 "$log"
    status=1
    continue
  fi
  runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$')
  echo "fuzz $target: $runs inputs in ${seconds} s, $((runs / seconds)) a second, no finding"
done
exit $status
