#!/usr/bin/env bash
# Deliberate faults, one at a time, in a scratch copy of the sources: each must make the core
# tests or the golden road fail. Prints one line per fault and the figure caught/total.
#   tests/mutate.sh [FAULTS_FILE] [SCRATCH_DIR]
# With OLD_TESTS=DIR, a folder of older core test sources, each fault is also run against those
# (with the golden road only), so that one run gives the figure before and after.
# FAULTS_FILE lines: FILE<TAB>OLD<TAB>NEW; OLD must occur exactly once; "<NL>" in OLD and NEW
# stands for a line end. Lines starting with "#" are skipped.
set -u
repo=$(cd "$(dirname "$0")/.." && pwd)
faults=${1:-$repo/tests/mutate_faults.txt}
scratch=${2:-/tmp/velmora-mutate}
mkdir -p "$scratch"
# Only changed files are copied, so the scratch build stays incremental from run to run.
rm -rf "$scratch/stage" && mkdir -p "$scratch/stage" "$scratch/src"
tar -C "$repo" --exclude='./build*' --exclude=./.git -cf - . | tar -C "$scratch/stage" -xf -
(cd "$scratch/stage" && find . -type f | while read -r f; do
  cmp -s "$f" "../src/$f" || { mkdir -p "../src/$(dirname "$f")" && cp "$f" "../src/$f"; }
done)
targets=(--target velmora_tests velmora-chart sample_data)
if [ -n "${OLD_TESTS:-}" ]; then
  mkdir -p "$scratch/src/tests_old" && cp "$OLD_TESTS"/*.cpp "$OLD_TESTS"/*.h "$scratch/src/tests_old/"
  grep -q velmora_tests_old "$scratch/src/tests/CMakeLists.txt" || cat >>"$scratch/src/tests/CMakeLists.txt" <<'CM'
file(GLOB OLD_TESTS ${CMAKE_SOURCE_DIR}/tests_old/*.cpp)
add_executable(velmora_tests_old ${OLD_TESTS})
target_link_libraries(velmora_tests_old PRIVATE velmora_core GTest::gtest_main)
target_compile_definitions(velmora_tests_old PRIVATE VELMORA_SAMPLE_DIR="${CMAKE_SOURCE_DIR}/sample")
CM
  targets+=(velmora_tests_old)
fi
cmake -S "$scratch/src" -B "$scratch/build" -G Ninja >/dev/null || exit 1
cmake --build "$scratch/build" -j2 "${targets[@]}" >/dev/null || exit 1

caught=0 total=0 invalid=0 oldCaught=0
road() { "$repo/tests/golden/road.sh" "$scratch/build/velmora-chart" "$repo/tests/golden/expected"; }
outputs() { "$repo/tests/golden/outputs.sh" "$scratch/build/velmora-chart"; }
# A fault only counts as caught if the sources without it pass every check.
if ! "$scratch/build/tests/velmora_tests" --gtest_brief=1 >/dev/null || ! road || ! outputs ||
  { [ -n "${OLD_TESTS:-}" ] && ! "$scratch/build/tests/velmora_tests_old" --gtest_brief=1 >/dev/null; }; then
  echo "the sources fail their checks without any fault"
  exit 1
fi
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
    before=""
    if [ -n "${OLD_TESTS:-}" ]; then
      if ! "$scratch/build/tests/velmora_tests_old" --gtest_brief=1 >/dev/null 2>&1 ||
        ! road >/dev/null 2>&1; then
        oldCaught=$((oldCaught + 1))
        before="(before: caught)     "
      else
        before="(before: not caught) "
      fi
    fi
    if ! "$scratch/build/tests/velmora_tests" --gtest_brief=1 >/dev/null 2>&1 ||
      ! road >/dev/null 2>&1 ||
      ! outputs >/dev/null 2>&1; then
      caught=$((caught + 1))
      echo "caught       $before$file: $old"
    else
      echo "NOT CAUGHT   $before$file: $old -> $new"
    fi
  fi
  mv "$src.orig" "$src"
  touch "$src"
done <"$faults"
cmake --build "$scratch/build" -j2 "${targets[@]}" >/dev/null 2>&1
echo "$caught of $total faults caught ($invalid not applied)"
[ -n "${OLD_TESTS:-}" ] && echo "older tests: $oldCaught of $total"
[ "$total" -gt 0 ] && [ $((caught * 10)) -ge $((total * 9)) ]
