#!/usr/bin/env bash
# Fails when README.md, docs/ or scripts/ name a test suite (tst_...) that no build's ctest lists,
# so that the docs follow the suites when one is renamed, merged or dropped. A name ending in
# '*' stands for the suites it starts.
#   scripts/check-suite-names.sh <build folder>...   the configured builds whose suites count
set -euo pipefail
cd "$(dirname "$0")/.."

suites=" "
for build in "$@"; do
    [[ -f $build/CTestTestfile.cmake ]] || continue
    suites+=$(cd "$build" && ctest -N | sed -n 's/^ *Test *#[0-9]*: \(tst_[A-Za-z0-9_]*\)$/\1/p' | tr '\n' ' ')
done
[[ $suites != " " ]] || { echo "check-suite-names: no configured build among: $*"; exit 1; }

stale=0
while IFS=: read -r file name; do
    if [[ $name == *'*' ]]; then
        [[ $suites == *" ${name%\*}"* ]] && continue
    else
        [[ $suites == *" $name "* ]] && continue
    fi
    echo "check-suite-names: $file names $name, which no ctest lists"
    stale=$((stale + 1))
done < <(git grep -oIE 'tst_[A-Za-z0-9_]+\*?' -- README.md docs scripts | sort -u)

((stale == 0)) || exit 1
echo "check-suite-names: every suite the docs and scripts name is a ctest suite"
