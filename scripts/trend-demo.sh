#!/usr/bin/env bash
# Remakes docs/trend-demo.csv and docs/trend-demo.png: a one-minute trend log of the simulated
# reader, switched from 1310 nm to 1550 nm after 25 s and unplugged from 40 s to 45 s, and its
# chart with each wavelength's statistics (printed too). Runs in a scratch folder of its own,
# so its record is nobody else's.
#   BUILD_DIR   build folder (default: ./build of the checkout)
set -euo pipefail

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${BUILD_DIR:-$source_dir/build}
docs=$source_dir/docs
opmrecord=$build_dir/tools/opmrecord/opmrecord
probe=$build_dir/tools/lumenProbe/lumenProbe
cmake --build "$build_dir" --target opmrecord lumenProbe >/dev/null

scratch=$(mktemp -d)
# ftok("<scratch>", 1), as glibc makes it: the segment to remove at the end.
read -r dev ino < <(stat -c '%d %i' "$scratch")
key=$(printf '0x%08x' $(((1 << 24) | ((dev & 0xff) << 16) | (ino & 0xffff))))
reader=
cleanup() {
    [[ -z $reader ]] || kill "$reader" 2>/dev/null || true
    ipcrm -M "$key" 2>/dev/null || true
    rm -rf "$scratch"
}
trap cleanup EXIT
cd "$scratch"
mkdir -m 700 runtime
export XDG_RUNTIME_DIR=$scratch/runtime

"$probe" &
reader=$!
sleep 0.5
"$opmrecord" --set wavelenthTarget=1 >/dev/null
sleep 1
"$opmrecord" log trend.csv --interval 500 --duration 60 &
logger=$!
sleep 25
"$opmrecord" --set wavelenthTarget=3 >/dev/null
sleep 15
kill -USR2 "$reader" # the module unplugged ...
sleep 5
kill -USR2 "$reader" # ... and plugged in again
wait "$logger"

cp trend.csv "$docs/trend-demo.csv"
"$opmrecord" chart "$docs/trend-demo.csv" -o "$docs/trend-demo.png" --summary
