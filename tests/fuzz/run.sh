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
mkdir -p "$seeds"/{airport,index,vor,numbers} "$work"/{airport,index,vor,numbers} "$crashes"

# Each airport of each sample file, and the index with each code in it: "CODE\n" then bytes.
for file in sample/FSXFiles/*.txt; do
  for code in $(grep -o '<Airport ident="[^"]*"' "$file" | cut -d'"' -f2); do
    { echo "$code"; cat "$file"; } >"$seeds/airport/$code-$(basename "$file")"
    { echo "$code"; cat "sample/Arpt index.txt"; } >"$seeds/index/$code"
  done
done
{ echo; cat sample/vor.nav; } >"$seeds/vor/vor.nav"
# Every quoted value of the samples and every field of the VOR list, one a file.
n=0
{ grep -oh '="[^"]*"' sample/FSXFiles/*.txt | cut -d'"' -f2; tr ';' '\n' <sample/vor.nav; } |
  sort -u | while IFS= read -r value; do
  n=$((n + 1))
  printf '%s' "$value" >"$seeds/numbers/$n"
done

status=0
for target in airport index vor numbers; do
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
