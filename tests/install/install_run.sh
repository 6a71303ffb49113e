#!/usr/bin/env bash
# Installs the build into a temporary DESTDIR, lays a copy of the sample into a temporary user
# data folder (FSXFiles and vor.nav, plus a file with a blank in its name and a copy that
# repeats every airport), builds the index with the installed velmora-index and loads every
# airport it lists with the installed velmora-chart.
set -euo pipefail
build=$1
sample=$2
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

DESTDIR="$tmp/root" cmake --install "$build" --prefix /usr >/dev/null
bin="$tmp/root/usr/bin"
for f in bin/velmora bin/velmora-chart bin/velmora-index share/applications/velmora.desktop \
  share/icons/hicolor/48x48/apps/velmora.png share/icons/hicolor/scalable/apps/velmora.svg \
  share/doc/velmora/README.md "share/velmora/sample/Arpt index.txt"; do
  [ -e "$tmp/root/usr/$f" ] || fail "not installed: $f"
done

export XDG_DATA_HOME="$tmp/xdg" HOME="$tmp/home"
data="$XDG_DATA_HOME/velmora"
mkdir -p "$data" "$HOME"
cp -r "$sample/FSXFiles" "$sample/vor.nav" "$data/"
cp "$sample/FSXFiles/sample_west.txt" "$data/FSXFiles/my airports.txt"
cp "$sample/FSXFiles/sample_multi.txt" "$data/FSXFiles/z_again.txt"

"$bin/velmora-index" 2>"$tmp/warnings" || fail "velmora-index: $(cat "$tmp/warnings")"
grep -q "^my airports.txt: the file name holds a blank" "$tmp/warnings" || fail "no blank warning"
grep -q '^z_again.txt: "XAMO" stands also in sample_multi.txt' "$tmp/warnings" ||
  fail "no duplicate warning"
grep -q "^5 airports in 2 files, 2 files skipped$" "$tmp/warnings" || fail "summary: $(tail -1 "$tmp/warnings")"
"$bin/velmora-index" --check 2>/dev/null || fail "--check right after writing"

count=0
while IFS=';' read -r ident _; do
  state=$("$bin/velmora-chart" --state - "type:$ident" search load 2>&1 | tail -1)
  grep -q '"cmdZoom": {[^}]*"enabled": true' <<<"$state" || fail "$ident did not load: $state"
  count=$((count + 1))
done < "$data/Arpt index.txt"
[ "$count" -eq 5 ] || fail "$count airports loaded"

"$bin/velmora-chart" --airport XWHL --approach "ILS 16L" --out "$tmp/chart.svg" ||
  fail "no chart from the user data folder"
[ -s "$tmp/chart.svg" ] || fail "empty chart"
echo "installed programs index and load all $count airports from $data"
