#!/usr/bin/env bash
# The bundle is reproducible and installs: scripts/release.sh runs twice, in two clean clones
# of HEAD in folders of different names and depths, one after the other; the two archives must
# be the same bytes. Then scripts/install-test.sh installs one and starts it (it takes the
# set's toolkit from the set build, so scripts/set-build.sh runs first).
#   RELEASE_CHECK_DIR  where the clones go (default: build-release-check)
set -euo pipefail
cd "$(dirname "$0")/.."
source_dir=$(pwd)
source scripts/qt4.sh

check_dir=${RELEASE_CHECK_DIR:-build-release-check}
rm -rf "$check_dir"
mkdir -p "$check_dir"
check_dir=$(cd "$check_dir" && pwd)
commit=$(git rev-parse HEAD)
shared=$(dirname "$qt4_shared_dir")

started=$SECONDS
archives=()
for clone in "$check_dir/a/opm" "$check_dir/second/run/opm-copy"; do
    mkdir -p "$(dirname "$clone")"
    git clone -q --no-hardlinks "$source_dir" "$clone"
    git -C "$clone" checkout -q --detach "$commit"
    # The Qt 4 tarballs lie beside every checkout.
    ln -s "$(realpath "$shared")" "$(dirname "$clone")/shared"
    if ! (cd "$clone" && bash scripts/release.sh) >"$clone.log" 2>&1; then
        tail -n 30 "$clone.log"
        echo "release-check: FAIL scripts/release.sh in $clone"
        exit 1
    fi
    archives+=("$(sed -n 's/^release: \(.*\.tar\.gz\)$/\1/p' "$clone.log")")
done
sums=$(cd / && sha256sum "${archives[@]}")
echo "$sums" | sed 's/^/release-check: /'
if [[ $(echo "$sums" | cut -d' ' -f1 | sort -u | wc -l) != 1 ]]; then
    echo "release-check: FAIL the two builds of $commit differ:"
    diff <(tar -tvzf "${archives[0]}") <(tar -tvzf "${archives[1]}") || true
    for i in 0 1; do
        mkdir -p "$check_dir/diff$i" && tar -xzf "${archives[$i]}" -C "$check_dir/diff$i"
    done
    diff -r "$check_dir/diff0" "$check_dir/diff1" || true
    exit 1
fi
echo "release-check: ok   two clean builds of ${commit:0:12} gave the same bytes" \
     "($(basename "${archives[0]}"), $((SECONDS - started)) s)"
bash scripts/install-test.sh "${archives[0]}"
