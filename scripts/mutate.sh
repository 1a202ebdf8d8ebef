#!/usr/bin/env bash
# How many faults the suites find: puts each mutant of scripts/mutants.txt (one small deliberate
# fault) into a scratch copy of the checkout, rebuilds what the suites need, runs the suites and
# prints which suite caught it, or that it survived; then the counts per source file and
# "N caught, M survived". The checkout itself is never changed. About a minute per mutant on two
# cores; not part of CI (docs/testing.md has the last runs).
#   scripts/mutate.sh [mutant id...]   only these mutants (default: all)
#   MUTATE_DIR   scratch folder (default: build-mutate of the checkout): tree/ the copy, build/
#   MUTANTS      mutant list (default: scripts/mutants.txt)
#   JOBS         parallel build and test jobs (default 2)
set -euo pipefail

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
work=${MUTATE_DIR:-$source_dir/build-mutate}
mutants=$(realpath "${MUTANTS:-$source_dir/scripts/mutants.txt}")
jobs=${JOBS:-2}
tree=$work/tree
build=$work/build
log=$work/log

note() { echo "mutate: $*" >&2; }

bash "$source_dir/scripts/setup.sh"
mkdir -p "$tree" "$build" "$log"

# --- the scratch copy: the checkout's files as they are now (tracked or new, not ignored) ------
# Only files that differ are copied, so that the build stays incremental between runs; a copy
# takes the time of copying (not its original's), so that make sees it as newer than its objects.
(cd "$source_dir" && git ls-files -co --exclude-standard -z) >"$log/files"
while IFS= read -r -d '' f; do
    [[ -f $source_dir/$f ]] || continue
    if ! cmp -s "$source_dir/$f" "$tree/$f"; then
        mkdir -p "$(dirname "$tree/$f")"
        cp "$source_dir/$f" "$tree/$f"
    fi
done <"$log/files"
# Files the checkout no longer has would still be built.
(cd "$tree" && find . -type f -printf '%P\0') | while IFS= read -r -d '' f; do
    [[ -e $source_dir/$f ]] || rm -f "$tree/$f"
done

# --- the mutants -------------------------------------------------------------------------------
# mutation list|apply <id...>: lists the chosen mutants (id, file, title), or applies one to the
# copy. See scripts/mutants.txt for the format.
mutation() {
    /usr/bin/python3 "$source_dir/scripts/mutation.py" "$1" "$tree" "$mutants" "${@:2}"
}

mutation list "$@" >"$log/mutants"
ids=()
files=()
titles=()
while IFS=$'\t' read -r id file title; do
    ids+=("$id")
    files+=("$file")
    titles+=("$title")
done <"$log/mutants"
[[ ${#ids[@]} -gt 0 ]] || { note "no mutants chosen"; exit 1; }
note "${#ids[@]} mutants, scratch copy in $tree"

# --- build and run -----------------------------------------------------------------------------
export QT_QPA_PLATFORM=offscreen
# A dropped call may leave a helper unused: a warning, not an error, for a mutant. A mutant that
# hangs a suite is caught by its time limit, half the usual one.
cmake -S "$tree" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DOPM_SANITIZE=OFF -DOPM_TEST_TIMEOUT=60 \
    -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O2 -DNDEBUG" \
    -DCMAKE_CXX_FLAGS="-Wno-error=unused-function -Wno-error=unused-variable -Wno-error=unused-but-set-variable -Wno-error=unused-parameter" \
    >"$log/configure.txt"
# Only what the suites run (their programs bring what they start): no benchmarks, no shots tool.
# A suite that is a script has no program; tst_fit loads the translations.
(cd "$build" && ctest -N | sed -n 's/^ *Test *#[0-9]*: //p') >"$log/suites"
cmake --build "$build" --target help | sed -n 's/^\.\.\. \([^ ]*\).*/\1/p' >"$log/build-targets"
{ grep -Fxf "$log/build-targets" "$log/suites" || true; echo opm_translations; } >"$log/targets"
mapfile -t targets <"$log/targets"

build_suites() { cmake --build "$build" -j "$jobs" --target "${targets[@]}" >"$log/build.txt" 2>&1; }

# run_suites: true when every suite passed; else the failing ones are in $log/failed.
run_suites() {
    rm -f "$log/failed"
    if (cd "$build" && ctest -j "$jobs" --stop-on-failure >"$log/ctest.txt" 2>&1); then
        return 0
    fi
    sed -n 's/^[[:space:]]*[0-9]* - \([^ ]*\) (.*/\1/p' "$log/ctest.txt" | sort -u | paste -sd, - \
        >"$log/failed"
    [[ -s $log/failed ]] || echo "ctest" >"$log/failed"
    return 1
}

# The mutated file comes back from a copy taken before, not from the checkout, which may have
# changed since the run began.
keep() { cp -p "$tree/$1" "$log/original"; }
restore() { cp "$log/original" "$tree/$1" && touch "$tree/$1"; }

note "building the unchanged copy"
build_suites || { note "the unchanged copy does not build: $log/build.txt"; exit 1; }
note "running the suites on the unchanged copy"
run_suites || { note "suites fail without a mutant ($(cat "$log/failed")): $log/ctest.txt"; exit 1; }

declare -A caught_in survived_in
caught=0
survived=0
broken=0
for i in "${!ids[@]}"; do
    id=${ids[$i]}
    file=${files[$i]}
    start=$SECONDS
    keep "$file"
    mutation apply "$id"
    if ! build_suites; then
        result="DOES NOT BUILD (log/build-$id.txt)"
        cp "$log/build.txt" "$log/build-$id.txt"
        broken=$((broken + 1))
    elif run_suites; then
        result="SURVIVED"
        survived=$((survived + 1))
        survived_in[$file]=$((${survived_in[$file]:-0} + 1))
    else
        result="caught by $(cat "$log/failed")"
        caught=$((caught + 1))
        caught_in[$file]=$((${caught_in[$file]:-0} + 1))
        cp "$log/ctest.txt" "$log/ctest-$id.txt"
    fi
    restore "$file"
    printf '%-4s %-30s %-50s %s (%ds)\n' "$id" "$file" "${titles[$i]:0:50}" "$result" \
        $((SECONDS - start))
done

# The copy as the checkout has it, for the next run.
build_suites || true

echo
echo "per file: caught/survived"
for f in $(printf '%s\n' "${!caught_in[@]}" "${!survived_in[@]}" | sort -u); do
    printf '  %-30s %d/%d\n' "$f" "${caught_in[$f]:-0}" "${survived_in[$f]:-0}"
done
echo "$caught caught, $survived survived$([[ $broken -eq 0 ]] || echo ", $broken did not build")"
[[ $broken -eq 0 ]]
