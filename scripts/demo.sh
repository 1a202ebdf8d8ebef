#!/usr/bin/env bash
# Builds everything and shows the optical power meter in the shell stand-in, with the
# simulated power reader, below a demo device root instead of "/".
# Without a display it runs headless through an operator's story (four readings saved by the
# reader's save key, the F1 report named on the keypad, the Result tab), writes screenshots
# into a folder it names, checks that the report was written and quits.
# With --qt4 it builds against Qt 4.8.4, the set's toolkit (../shared/qt4, or QT4_DIR), in
# build-qt4/, and the shell stand-in loads the plug-in through Qt 4's QPluginLoader; headless
# it runs under xvfb-run, as Qt 4 has no offscreen platform.
# With --lang CODE (de, es, fr, ru, zh_CN) the shell stand-in installs the plug-in's translation
# before the start, as the set's shell does for its language.
#   BUILD_DIR   build folder (default: ./build of the checkout, ./build-qt4 with --qt4)
set -euo pipefail

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
qt4=false
lang=()
while [[ $# -gt 0 ]]; do
    case $1 in
        --qt4) qt4=true ;;
        --lang) lang=(--lang "${2:?--lang needs a language code}"); shift ;;
        *) echo "demo: unknown option $1 (--qt4, --lang CODE)" >&2; exit 2 ;;
    esac
    shift
done
build_dir=${BUILD_DIR:-$source_dir/build}
$qt4 && build_dir=${BUILD_DIR:-$source_dir/build-qt4}
build_dir=$(mkdir -p "$build_dir" && cd "$build_dir" && pwd)

bash "$source_dir/scripts/setup.sh"
configure=(-DOPM_QT=5)
# How the shell stand-in runs without a display, and with one.
headless=(env QT_QPA_PLATFORM=offscreen)
shown=(env)
if $qt4; then
    source "$source_dir/scripts/qt4.sh"
    if ! qt4_unpack "$build_dir" qt-4.8.4-x86_64.tar.xz qt-4.8.4 "${QT4_DIR:-}"; then
        echo "demo: no Qt 4.8.4: $qt4_missing" >&2
        exit 1
    fi
    configure=(-DOPM_QT=4 "-DQT_QMAKE_EXECUTABLE=$qt4_dir/bin/qmake")
    shown=(env "LD_LIBRARY_PATH=$qt4_dir/lib")
    headless=("${shown[@]}" xvfb-run -a -s "-screen 0 1024x768x24")
fi
cmake -S "$source_dir" -B "$build_dir" "${configure[@]}" >/dev/null
cmake --build "$build_dir" -j "$(nproc 2>/dev/null || echo 2)"

source "$source_dir/scripts/demoRoot.sh"
shell=$build_dir/tools/opmshell/opmshell
inspector=$build_dir/tools/opmrecord/opmrecord
plugin=$(ls "$build_dir"/src/*opmplugin_demo.so 2>/dev/null | head -n 1 || true)
if [[ -z $plugin ]]; then
    echo "demo: the demo plug-in was not built in $build_dir/src" >&2
    exit 1
fi
stop_demo_on_exit

# The operator's side of the headless story, next to the shell's timed keys below: the set's
# save key on the reader (SIGUSR1 to the pid in the record), and a move to 1550 nm behind the
# page's back, as an operator's wish would.
press_save_key() {
    local pid
    pid=$("$inspector" 2>/dev/null | awk '$1 == "pid" { print $3 }')
    if [[ -n $pid && $pid -gt 0 ]]; then
        kill -USR1 "$pid" 2>/dev/null || true
    fi
}

# The page polls the record once a second, so saves lie more than a second apart, and its
# "Last Saved" line shows a save one poll later.
headless_story() {
    sleep 2.2
    press_save_key
    sleep 1.2
    press_save_key
    sleep 2.8
    "$inspector" --set wavelenthTarget=3 >/dev/null || true
    sleep 1.4
    press_save_key
    sleep 1.3
    press_save_key
    sleep 1.1
    echo "demo: the shared record after switching to 1550 nm:"
    "$inspector" || true
}

prepare_root

# The shared record's key follows the working folder, and the reader inherits it.
cd "$root"
echo "demo: device root $root"
if [[ -z ${DISPLAY:-} && -z ${WAYLAND_DISPLAY:-} ]]; then
    screens=$build_dir/demo-screens
    mkdir -p "$screens"
    rm -f "$screens"/*.png
    report=$root/home/brova/brova-rslt/opm/route-7.html
    rm -f "$report"
    echo "demo: no display; running headless, screenshots go to $screens"
    headless_story &
    helpers+=($!)
    # Four saved readings, then F1: the keypad proposes a name, the operator types "route-7"
    # and confirms; Ctrl+Tab opens the Result tab.
    "${headless[@]}" "$shell" --plugin "$plugin" "${lang[@]}" --autostart \
        --screenshot-at "2:$screens/1-started.png" \
        --screenshot-at "5.9:$screens/2-saved-850.png" \
        --screenshot-at "11.5:$screens/3-saved-1550.png" \
        --key-at 11.9:F1 \
        --screenshot-at "12.3:$screens/4-keypad.png" \
        --key-at 12.7:R --key-at 12.85:O --key-at 13:U --key-at 13.15:T --key-at 13.3:E \
        --key-at 13.45:- --key-at 13.6:7 \
        --screenshot-at "14:$screens/5-keypad-named.png" \
        --key-at 14.4:Return \
        --key-at 15.2:Ctrl+Tab \
        --screenshot-at "16.1:$screens/6-result-tab.png" \
        --quit-after 16.6
    if [[ ! -s $report ]]; then
        echo "demo: the report $report was not written" >&2
        exit 1
    fi
    echo "demo: report $report"
    echo "demo: screenshots in $screens"
else
    "${shown[@]}" "$shell" --plugin "$plugin" "${lang[@]}" --autostart
fi
