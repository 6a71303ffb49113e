#!/usr/bin/env bash
# velmora-chart writes every picture format whole: PNG at the canvas size, SVG and PDF, each
# holding the sample chart rather than an empty page; and the approach profile in each.
#   outputs.sh VELMORA_CHART
set -u
bin=$1
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
if ! "$bin" --airport XWHL --approach "ILS 16L" --out "$out/c.png" --out "$out/c.svg" \
  --out "$out/c.pdf" >/dev/null 2>"$out/err"; then
  echo "velmora-chart failed: $(cat "$out/err")"
  exit 1
fi
for ext in png svg pdf; do
  if ! "$bin" --airport XWHL --approach "ILS 16L" --profile "$out/p.$ext" >/dev/null 2>"$out/err"; then
    echo "velmora-chart --profile p.$ext failed: $(cat "$out/err")"
    exit 1
  fi
done
fail=0
check() {  # FILE WHAT FIRST_BYTES MIN_SIZE
  local size
  size=$(stat -c %s "$1" 2>/dev/null || echo 0)
  if [ "$(head -c ${#3} "$1" 2>/dev/null)" != "$3" ] || [ "$size" -lt "$4" ]; then
    echo "$2: $size bytes, does not start with '$3' or is under $4 bytes"
    fail=1
  fi
}
check "$out/c.png" PNG $'\x89PNG' 20000
check "$out/c.svg" SVG '<svg ' 10000
check "$out/c.pdf" PDF '%PDF' 5000
# 14415 x 10215 twips at 15 twips a pixel.
size=$(od -An -tx1 -j16 -N8 "$out/c.png" | tr -d ' \n')
[ "$size" = 000003c1000002a9 ] || { echo "PNG size bytes $size, not 961 x 681"; fail=1; }
[ "$(grep -c '^<line ' "$out/c.svg")" -gt 30 ] || { echo "SVG holds too few lines"; fail=1; }
grep -q '>XWHL</text>' "$out/c.svg" || { echo "SVG lacks the airport's code"; fail=1; }
# The profile: 14415 x 2400 twips, its fixes in every format.
check "$out/p.png" "profile PNG" $'\x89PNG' 5000
check "$out/p.svg" "profile SVG" '<svg ' 2000
check "$out/p.pdf" "profile PDF" '%PDF' 2000
size=$(od -An -tx1 -j16 -N8 "$out/p.png" | tr -d ' \n')
[ "$size" = 000003c1000000a0 ] || { echo "profile PNG size bytes $size, not 961 x 160"; fail=1; }
grep -q 'viewBox="0 0 14415 2400"' "$out/p.svg" || { echo "profile SVG is not 14415 x 2400"; fail=1; }
for ident in TOBRI MIRSK WH RW16L; do
  grep -q ">$ident</text>" "$out/p.svg" || { echo "profile SVG lacks $ident"; fail=1; }
done
if command -v pdftotext >/dev/null; then
  pdftotext "$out/p.pdf" - | grep -q TOBRI || { echo "profile PDF lacks TOBRI"; fail=1; }
fi
[ $fail = 0 ] && echo "PNG, SVG and PDF written, of the chart and of the profile"
exit $fail
