#!/usr/bin/env bash
# Builds everything and runs every test suite, headless, twice: as built for the product
# (build/) and under AddressSanitizer and UndefinedBehaviorSanitizer (build-asan/, settings in
# tests/sanitizer/env.sh). Arguments go to ctest in both runs. Fails when either run fails.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh

BUILD_DIR=${BUILD_DIR:-build}
SANITIZE_BUILD_DIR=${SANITIZE_BUILD_DIR:-build-asan}
export QT_QPA_PLATFORM=offscreen

# build_and_test <build dir> <sanitize ON|OFF> <ctest arguments...>
build_and_test()
{
    local dir=$1 sanitize=$2
    shift 2
    echo "test.sh: $dir (OPM_SANITIZE=$sanitize)"
    cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DOPM_SANITIZE="$sanitize" >/dev/null \
        && cmake --build "$dir" -j "$(nproc)" \
        && (cd "$dir" && ctest --output-on-failure -j "$(nproc)" "$@")
}

# Both runs go ahead whatever the first one gives, so one run shows every failure.
plain=passed
sanitized=passed
build_and_test "$BUILD_DIR" OFF "$@" || plain=FAILED
(source tests/sanitizer/env.sh && build_and_test "$SANITIZE_BUILD_DIR" ON "$@") || sanitized=FAILED

echo "test.sh: $BUILD_DIR $plain, $SANITIZE_BUILD_DIR (sanitizers) $sanitized"
[ "$plain" = passed ] && [ "$sanitized" = passed ]
