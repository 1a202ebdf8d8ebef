#!/usr/bin/env bash
# Builds everything and runs every test suite, headless: as built for the product (build/),
# under AddressSanitizer and UndefinedBehaviorSanitizer (build-asan/, settings in
# tests/sanitizer/env.sh), and against Qt 4.8.4, the set's toolkit (build-qt4/, under
# xvfb-run: Qt 4 has no offscreen platform), when ../shared/qt4 holds it or QT4_DIR names an
# unpacked one. Then the set build (scripts/set-build.sh), and the set's bundle made twice from
# clean clones, compared and installed (scripts/release-check.sh). Arguments go to ctest in
# every run.
# Before the builds it checks the format (scripts/check-format.sh); after them, that the docs and
# scripts name only suites that ctest lists, and docs/robustness.md only tests the suites list
# (scripts/check-suite-names.sh).
# Fails when any run or check fails; a missing Qt 4 skips its runs with a line saying why.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
bash scripts/check-toolkit.sh
source scripts/qt4.sh

BUILD_DIR=${BUILD_DIR:-build}
SANITIZE_BUILD_DIR=${SANITIZE_BUILD_DIR:-build-asan}
QT4_BUILD_DIR=${QT4_BUILD_DIR:-build-qt4}
export QT_QPA_PLATFORM=offscreen
jobs=$(nproc)

# build_and_test <build dir> <cmake arguments...> -- <ctest arguments...>
build_and_test()
{
    local dir=$1
    shift
    local configure=()
    while [[ $1 != -- ]]; do configure+=("$1"); shift; done
    shift
    echo "test.sh: $dir (${configure[*]})"
    cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo "${configure[@]}" >/dev/null \
        && cmake --build "$dir" -j "$jobs" \
        && (cd "$dir" && "${runner[@]}" ctest --output-on-failure -j "$jobs" "$@")
}

# Every run goes ahead whatever the others give, so one run shows every failure.
format=passed
bash scripts/check-format.sh || format=FAILED
plain=passed
sanitized=passed
qt4=passed
set_build=passed
release=passed
runner=(env)
build_and_test "$BUILD_DIR" -DOPM_SANITIZE=OFF -DOPM_QT=5 -- "$@" || plain=FAILED
(source tests/sanitizer/env.sh && build_and_test "$SANITIZE_BUILD_DIR" -DOPM_SANITIZE=ON -DOPM_QT=5 -- "$@") \
    || sanitized=FAILED

if qt4_unpack "$QT4_BUILD_DIR" qt-4.8.4-x86_64.tar.xz qt-4.8.4 "${QT4_DIR:-}"; then
    # The libraries' own rpath names where Qt 4 was built, so they are found by the path.
    runner=(env "LD_LIBRARY_PATH=$qt4_dir/lib" xvfb-run -a -s "-screen 0 1024x768x24")
    build_and_test "$QT4_BUILD_DIR" -DOPM_SANITIZE=OFF -DOPM_QT=4 \
        "-DQT_QMAKE_EXECUTABLE=$qt4_dir/bin/qmake" -- "$@" || qt4=FAILED
else
    echo "test.sh: Qt 4.8.4 run skipped: $qt4_missing"
    qt4=skipped
fi
# It says itself when it has no Qt 4 for the set's CPU, or cannot run what it built.
set_build_log=$(mktemp)
bash scripts/set-build.sh | tee "$set_build_log" || set_build=FAILED
# The bundle is made from the set's Qt 4 and installed on the set build's toolkit.
if grep -q "^set-build: skipped" "$set_build_log"; then
    release=skipped
    echo "test.sh: the bundle's check skipped: no set build"
else
    bash scripts/release-check.sh || release=FAILED
fi
rm -f "$set_build_log"

# Some suites exist only in the Qt 4 build: without it the docs' names cannot all be checked.
suite_names=skipped
if [[ $qt4 != skipped ]]; then
    suite_names=passed
    bash scripts/check-suite-names.sh "$BUILD_DIR" "$QT4_BUILD_DIR" || suite_names=FAILED
fi

echo "test.sh: format $format, suite names $suite_names, $BUILD_DIR $plain," \
     "$SANITIZE_BUILD_DIR (sanitizers) $sanitized, $QT4_BUILD_DIR (Qt 4.8.4) $qt4," \
     "set build $set_build, bundle $release"
[[ $format = passed && $suite_names != FAILED && $plain = passed && $sanitized = passed \
    && $qt4 != FAILED && $set_build != FAILED && $release != FAILED ]]
