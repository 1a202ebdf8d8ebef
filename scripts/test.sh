#!/usr/bin/env bash
# Builds everything and runs every test suite, headless.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh

BUILD_DIR=${BUILD_DIR:-build}
cmake -S . -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$BUILD_DIR" -j "$(nproc)"

export QT_QPA_PLATFORM=offscreen
cd "$BUILD_DIR"
ctest --output-on-failure -j "$(nproc)" "$@"
