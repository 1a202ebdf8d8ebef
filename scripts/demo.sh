#!/usr/bin/env bash
# Builds everything and shows the optical power meter in the shell stand-in, with the
# simulated power reader, below a demo device root instead of "/".
# Without a display it runs headless, writes screenshots into a folder it names and quits.
#   BUILD_DIR   build folder (default: ./build of the checkout)
set -euo pipefail

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${BUILD_DIR:-$source_dir/build}
build_dir=$(mkdir -p "$build_dir" && cd "$build_dir" && pwd)

bash "$source_dir/scripts/setup.sh"
cmake -S "$source_dir" -B "$build_dir" >/dev/null
cmake --build "$build_dir" -j "$(nproc 2>/dev/null || echo 2)"

root=$(sed -n 's/^OPM_DEMO_ROOT:PATH=//p' "$build_dir/CMakeCache.txt")
root=${root:-$build_dir/demo-root}
shell=$build_dir/tools/opmshell/opmshell
probe=$build_dir/tools/lumenProbe/lumenProbe
inspector=$build_dir/tools/opmrecord/opmrecord
plugin=$(ls "$build_dir"/src/*opmplugin_demo.so 2>/dev/null | head -n 1 || true)
if [[ -z $plugin ]]; then
    echo "demo: the demo plug-in was not built in $build_dir/src" >&2
    exit 1
fi
reader=$root/usr/local/brova/bin/lumenProbe
helpers=()

cleanup() {
    local pid
    for pid in "${helpers[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
    # By its path: only the demo root's reader, never one of another run or of the tests.
    killall -q -9 "$reader" 2>/dev/null || true
}
trap cleanup EXIT

prepare_root() {
    mkdir -p "$root/home" "$root/usr/local/brova/bin" "$root/usr/local/brova/lib" "$root/etc/brova"
    killall -q -9 "$reader" 2>/dev/null || true
    # A copy, not a link: the page kills its reader by this path, which must name the demo's
    # reader alone and not the build's program that tests run too.
    cp -f "$probe" "$reader.new"
    mv -f "$reader.new" "$reader"
    echo "BR-500 Common Platform V2.4.1 (build 2024-05-14)" >"$root/usr/local/brova/lib/vendor-info.txt"
    printf 'mac=00:1a:2b:3c:4d:5e\nsn=BR-0001234\n' >"$root/etc/brova/e2prom.txt"
}

# Moves the reader to 1550 nm behind the page's back, as an operator's wish would, and shows
# the record the page reads.
headless_story() {
    sleep 4
    "$inspector" --set wavelenthTarget=3 >/dev/null || true
    sleep 2.5
    echo "demo: the shared record after switching to 1550 nm:"
    "$inspector" || true
}

prepare_root
if [[ -z ${XDG_RUNTIME_DIR:-} ]]; then
    export XDG_RUNTIME_DIR=$build_dir/demo-runtime
    mkdir -p -m 700 "$XDG_RUNTIME_DIR"
fi

# The shared record's key follows the working folder, and the reader inherits it.
cd "$root"
echo "demo: device root $root"
if [[ -z ${DISPLAY:-} && -z ${WAYLAND_DISPLAY:-} ]]; then
    screens=$build_dir/demo-screens
    mkdir -p "$screens"
    rm -f "$screens"/*.png
    echo "demo: no display; running headless, screenshots go to $screens"
    headless_story &
    helpers+=($!)
    QT_QPA_PLATFORM=offscreen "$shell" --plugin "$plugin" --autostart \
        --screenshot-at "2:$screens/1-started.png" \
        --screenshot-at "5:$screens/2-switching.png" \
        --screenshot-at "7.5:$screens/3-following-1550.png" \
        --quit-after 8
    echo "demo: screenshots in $screens"
else
    "$shell" --plugin "$plugin" --autostart
fi
