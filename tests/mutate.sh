#!/usr/bin/env bash
# Deliberate faults, one at a time, in a scratch copy of the sources: each must make the core
# tests or the golden road fail. Prints one line per fault and the figure caught/total.
#   tests/mutate.sh [FAULTS_FILE] [SCRATCH_DIR]
# FAULTS_FILE lines: FILE<TAB>OLD<TAB>NEW; OLD must occur exactly once; "<NL>" in OLD and NEW
# stands for a line end. Lines starting with "#" are skipped.
set -u
repo=$(cd "$(dirname "$0")/.." && pwd)
faults=${1:-$repo/tests/mutate_faults.txt}
scratch=${2:-/tmp/velmora-mutate}
mkdir -p "$scratch"
# Only changed files are copied, so the scratch build stays incremental from run to run.
rm -rf "$scratch/stage" && mkdir -p "$scratch/stage" "$scratch/src"
tar -C "$repo" --exclude=./build --exclude=./.git -cf - . | tar -C "$scratch/stage" -xf -
(cd "$scratch/stage" && find . -type f | while read -r f; do
  cmp -s "$f" "../src/$f" || { mkdir -p "../src/$(dirname "$f")" && cp "$f" "../src/$f"; }
done)
cmake -S "$scratch/src" -B "$scratch/build" -G Ninja >/dev/null || exit 1
targets=(--target velmora_tests velmora-chart)
cmake --build "$scratch/build" -j2 "${targets[@]}" >/dev/null || exit 1

caught=0 total=0 invalid=0
while IFS=$'\t' read -r file old new; do
  [[ -z "$file" || "$file" == \#* ]] && continue
  src="$scratch/src/$file"
  cp "$src" "$src.orig"
  if ! python3 - "$src" "$old" "$new" <<'PY'; then
import sys
path, old, new = sys.argv[1], sys.argv[2].replace("<NL>", "\n"), sys.argv[3].replace("<NL>", "\n")
text = open(path, encoding="latin-1").read()
if text.count(old) != 1:
    sys.exit(1)
open(path, "w", encoding="latin-1").write(text.replace(old, new))
PY
    echo "BAD PATTERN  $file: $old"
    invalid=$((invalid + 1))
    mv "$src.orig" "$src"
    continue
  fi
  if ! cmake --build "$scratch/build" -j2 "${targets[@]}" >/dev/null 2>&1; then
    echo "NO BUILD     $file: $old"
    invalid=$((invalid + 1))
  else
    total=$((total + 1))
    if ! "$scratch/build/tests/velmora_tests" --gtest_brief=1 >/dev/null 2>&1 ||
      ! "$repo/tests/golden/road.sh" "$scratch/build/velmora-chart" \
        "$repo/tests/golden/expected" >/dev/null 2>&1; then
      caught=$((caught + 1))
      echo "caught       $file: $old"
    else
      echo "NOT CAUGHT   $file: $old -> $new"
    fi
  fi
  mv "$src.orig" "$src"
  touch "$src"
done <"$faults"
cmake --build "$scratch/build" -j2 "${targets[@]}" >/dev/null 2>&1
echo "$caught of $total faults caught ($invalid not applied)"
[ "$total" -gt 0 ] && [ $((caught * 10)) -ge $((total * 9)) ]
