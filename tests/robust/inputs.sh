#!/usr/bin/env bash
# Hostile data through velmora-chart: far clicks, far fixes, files that are not files, a 200 MB
# line. Each road must end within seconds, with the caption it should have, and draw nothing
# at a position that wrapped round the 32-bit range (every far place here lies east).
#   inputs.sh VELMORA_CHART SAMPLE_DIR
set -u
bin=$1
sample=$2
data=$(mktemp -d)
trap 'rm -rf "$data"' EXIT
cp -r "$sample"/. "$data"/
mkfifo "$data/FSXFiles/fifo.txt"
# XBIG: a 200 MB line, then XWHL; XNOT is not in that file.
{
  head -c 200000000 /dev/zero | tr '\0' x
  printf '\r\n'
  sed 's/ident="XWHL"/ident="XBIG"/' "$data/FSXFiles/sample_west.txt"
} >"$data/FSXFiles/big.txt"
printf 'XFIF;a;b;fifo.txt\r\nXZER;a;b;/dev/zero\r\nXUP;a;b;../vor.nav\r\nXBIG;a;b;big.txt\r\n' \
  >>"$data/Arpt index.txt"
printf 'XNOT;a;b;big.txt\r\n' >>"$data/Arpt index.txt"
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
road "FSXFiles/fifo.txt is not an airport file Velmora can read - no chart for XFIF" \
  type:XFIF search load
road "FSXFiles//dev/zero is not an airport file Velmora can read - no chart for XZER" \
  type:XZER search load
road "FSXFiles/../vor.nav is not an airport file Velmora can read - no chart for XUP" \
  type:XUP search load
road "XBIG-a-b-big.txt - 1 line longer than 16 MB passed over" type:XBIG search load
road "Sorry, XNOT is not in FSXFiles/big.txt - no chart - 1 line longer than 16 MB passed over" \
  type:XNOT search load
[ $failed -eq 0 ] && echo "hostile roads end in time with their captions"
exit $failed
