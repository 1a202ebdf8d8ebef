#!/usr/bin/env bash
# Runs the suites that show widgets under valgrind's memcheck in a plain build of its own
# (build-memcheck/): a suite fails on any memory error or definite leak. Findings in Qt and
# system libraries are suppressed in tests/sanitizer/valgrind.supp. Arguments go to ctest
# (-R tst_results: that suite alone). Last results: docs/memcheck.md.
#   BUILD_DIR   build folder (default: build-memcheck)
set -euo pipefail
cd "$(dirname "$0")/.."
top=$(pwd)

bash scripts/setup.sh valgrind

BUILD_DIR=${BUILD_DIR:-build-memcheck}
# valgrind runs a suite 5 to 20 times slower: a longer time limit per suite.
cmake -S . -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DOPM_SANITIZE=OFF \
    -DOPM_TEST_TIMEOUT=900 >/dev/null
cmake --build "$BUILD_DIR" -j "$(nproc)"

# Suites with a QApplication (QTEST_MAIN) show widgets.
widget_suites=$(grep -rl --include='tst_*.cpp' 'QTEST_MAIN(' tests | xargs -n1 basename | sed 's/\.cpp$//')
pattern="^($(echo $widget_suites | tr ' ' '|'))\$"

# Only the suite's own process: the readers and shells it starts are not traced, nor the
# children tst_faults forks to kill at a chosen step (the suite itself runs the same steps).
options="--tool=memcheck --error-exitcode=1 --leak-check=full --errors-for-leak-kinds=definite"
options+=" --trace-children=no --child-silent-after-fork=yes --num-callers=30"

export QT_QPA_PLATFORM=offscreen
# valgrind cannot follow the machine code the regular expression engine compiles at run time
# and reports each value read there as uninitialised: have Qt interpret expressions instead.
export QT_ENABLE_REGEXP_JIT=0
cd "$BUILD_DIR"
ctest -T memcheck --output-on-failure -j "$(nproc)" -R "$pattern" \
    --overwrite MemoryCheckType=Valgrind \
    --overwrite MemoryCheckCommand="$(command -v valgrind)" \
    --overwrite MemoryCheckCommandOptions="$options" \
    --overwrite MemoryCheckSuppressionFile="$top/tests/sanitizer/valgrind.supp" \
    "$@"
