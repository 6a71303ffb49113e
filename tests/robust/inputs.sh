#!/usr/bin/env bash
# Hostile data through velmora-chart: far clicks, far fixes, a 200 MB line (files that are not
# files have their own tests). Each road must end within seconds, with the caption it should have, and draw nothing
# at a position that wrapped round the 32-bit range (every far place here lies east).
#   inputs.sh VELMORA_CHART SAMPLE_DIR
set -u
bin=$1
sample=$2
data=$(mktemp -d)
trap 'rm -rf "$data"' EXIT
cp -r "$sample"/. "$data"/
# XBIG: a 200 MB line, then XWHL; XNOT is not in that file.
{
  head -c 200000000 /dev/zero | tr '\0' x
  printf '\r\n'
  sed 's/ident="XWHL"/ident="XBIG"/' "$data/FSXFiles/sample_west.txt"
} >"$data/FSXFiles/big.txt"
printf 'XBIG;a;b;big.txt\r\nXNOT;a;b;big.txt\r\n' >>"$data/Arpt index.txt"
# XFAR: XWHL far west, its first ILS fix far east.
sed -e 's/ident="XWHL"/ident="XFAR"/' -e 's/W118 42.15/W99999 00.00/' \
  -e 's/W118 47.96/E99999 00.00/' "$data/FSXFiles/sample_west.txt" >"$data/FSXFiles/far.txt"
# XFIX: XWHL with its first ILS fix far east.
sed -e 's/ident="XWHL"/ident="XFIX"/' -e 's/W118 47.96/E99999 00.00/' \
  "$data/FSXFiles/sample_west.txt" >"$data/FSXFiles/fix.txt"
printf 'XFAR;a;b;far.txt\r\nXFIX;a;b;fix.txt\r\n' >>"$data/Arpt index.txt"

far=click:-1000000000,0
plus7="plus plus plus plus plus plus plus"
failed=0
road() {
  local want=$1
  shift
  local start=$SECONDS
  local caption
  timeout 20 "$bin" --data "$data" --state "$data/state" --trace "$data/trace" "$@" >/dev/null 2>&1
  local status=$?
  if grep -qE ' -2[0-9]{9}( |$)' "$data/trace"; then
    echo "FAILED: $* -> a position wrapped round"
    failed=1
  fi
  caption=$(tail -n 1 "$data/state" |
    sed -e 's/^{"step": [0-9]*, "caption": "//' -e 's/", "txtSearch".*//')
  if [ "$status" -ne 0 ] || [ "$caption" != "$want" ] || [ $((SECONDS - start)) -gt 5 ]; then
    echo "FAILED: $* -> exit $status, $((SECONDS - start)) s, caption: $caption"
    failed=1
  fi
}
west=XWHL-WhitlowHarborInternational-Westmark-sample_west.txt
road "$west" type:XWHL search load $far $far $far
road "XFIX-a-b-fix.txt" type:XFIX search load pick:0 $plus7 $far $far
road "XFAR-a-b-far.txt" type:XFAR search load pick:0 $plus7
road "XBIG-a-b-big.txt - 1 line longer than 16 MB passed over" type:XBIG search load
road "Sorry, XNOT is not in FSXFiles/big.txt - no chart - 1 line longer than 16 MB passed over" \
  type:XNOT search load
[ $failed -eq 0 ] && echo "hostile roads end in time with their captions"
exit $failed
