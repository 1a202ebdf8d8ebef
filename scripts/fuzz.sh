#!/usr/bin/env bash
# Fuzzes the harnesses of fuzz/ with libFuzzer (clang, AddressSanitizer, UBSan; in build-fuzz/).
#   scripts/fuzz.sh [seconds] [harness...]      default: 600 s each, every harness
# Each runs over a scratch copy of its corpus; only inputs that add coverage are merged back
# into fuzz/corpus/<harness>/ (-merge=1). A crash stops that harness and leaves the input in
# build-fuzz/findings/<harness>/; the script then ends with status 1.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-600}
[ $# -gt 0 ] && shift
harnesses=("$@")
[ ${#harnesses[@]} -gt 0 ] || harnesses=(tick setup results)

bash scripts/setup.sh clang libclang-rt-14-dev

# Absolute: the harnesses move into a device root of their own.
BUILD_DIR=$PWD/build-fuzz
cmake -S . -B "$BUILD_DIR" -DOPM_FUZZ=ON -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$BUILD_DIR" -j "$(nproc)" --target "${harnesses[@]/#/fuzz_}"

export UBSAN_OPTIONS=print_stacktrace=1
# The page syncs its settings file to disk on every change: keep the run's device root in
# memory, or the disk sets the pace.
[ -d /dev/shm ] && [ -w /dev/shm ] && export TMPDIR=/dev/shm
failed=()
for h in "${harnesses[@]}"; do
    fuzzer=$BUILD_DIR/fuzz/fuzz_$h
    corpus=$PWD/fuzz/corpus/$h
    work=$BUILD_DIR/work/$h
    findings=$BUILD_DIR/findings/$h
    log=$BUILD_DIR/fuzz-$h.log
    rm -rf "$work"
    mkdir -p "$work" "$findings"
    cp "$corpus"/* "$work"/
    echo "fuzz: $h for ${seconds} s (log: $log)"
    # stdout closed: the page narrates every step.
    if ! "$fuzzer" -max_total_time="$seconds" -timeout=10 -close_fd_mask=1 -print_final_stats=1 \
        -artifact_prefix="$findings/" "$work" >"$log" 2>&1; then
        failed+=("$h")
        grep -E "^(==[0-9]+==ERROR|SUMMARY|artifact_prefix|Test unit written)" "$log" || tail -20 "$log"
    fi
    grep -E "^#[0-9]+.*(DONE|pulse)" "$log" | tail -1 || true
    grep -E "^stat::" "$log" || true
    before=$(ls "$corpus" | wc -l)
    "$fuzzer" -merge=1 -close_fd_mask=1 "$corpus" "$work" >>"$log" 2>&1
    echo "fuzz: $h corpus $before -> $(ls "$corpus" | wc -l) inputs"
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz: crashes in ${failed[*]}; inputs in $BUILD_DIR/findings/"
    exit 1
fi
