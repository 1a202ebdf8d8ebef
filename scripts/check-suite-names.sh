#!/usr/bin/env bash
# Fails when README.md, docs/ or scripts/ name a test suite (tst_...) that no build's ctest lists,
# so that the docs follow the suites when one is renamed, merged or dropped. A name ending in
# '*' stands for the suites it starts. It also fails when a test that docs/robustness.md cites
# ("suite: function" or "suite: function / "row", "row"") is not one the suite lists (-datatags).
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

# The tests robustness.md cites, from the first build that has the suite.
listed() {
    local build
    for build in "$@"; do
        [[ -x $build/tests/$suite ]] || continue
        (cd "$build/tests" && QT_QPA_PLATFORM=offscreen "./$suite" -datatags 2>/dev/null) && return
    done
}
while IFS= read -r cell; do
    suite=${cell%%:*}
    rest=${cell#*: }
    function=${rest%% *}
    tags=$(listed "$@")
    [[ -n $tags ]] || continue
    rows=$(grep -oE '"[^"]*"' <<<"$rest" | sed 's/^"//; s/"$//' || true)
    if [[ -z $rows ]]; then
        grep -qE "^[A-Za-z]+ $function( |$)" <<<"$tags" && continue
        echo "check-suite-names: docs/robustness.md cites $suite: $function, which it does not list"
        stale=$((stale + 1))
    fi
    while IFS= read -r row; do
        [[ -n $row ]] || continue
        grep -qxF "$(head -1 <<<"$tags" | cut -d' ' -f1) $function $row" <<<"$tags" && continue
        echo "check-suite-names: docs/robustness.md cites $suite: $function / \"$row\", which it does not list"
        stale=$((stale + 1))
    done <<<"$rows"
done < <(grep -oE 'tst_[a-z0-9_]+: [A-Za-z_][A-Za-z0-9_]*( / "[^"]*"(, "[^"]*")*)?' docs/robustness.md | sort -u)

((stale == 0)) || exit 1
echo "check-suite-names: every suite the docs and scripts name is a ctest suite, every test robustness.md cites is listed"
