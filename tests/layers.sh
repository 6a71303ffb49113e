#!/usr/bin/env bash
# Folders include only folders below them: data < geometry < charts < import < shell.
# Prints each include that reaches upward and fails if there is one.
#   tests/layers.sh REPO
set -u
cd "${1:-$(dirname "$0")/..}" || exit 2
order=(data geometry charts import shell)
bad=0
for i in "${!order[@]}"; do
  higher=("${order[@]:i+1}")
  [ ${#higher[@]} -eq 0 ] && continue
  pattern="#include \"($(IFS='|'; echo "${higher[*]}"))/"
  while IFS= read -r hit; do
    echo "reaches upward: $hit"
    bad=1
  done < <(grep -rnE "$pattern" "${order[i]}" --include='*.cpp' --include='*.h')
done
[ $bad -eq 0 ] && echo "every include points downward"
exit $bad
