#!/usr/bin/env bash
# Builds the product as the set runs it: 32-bit x86 (-m32), Qt 4.8.4 for Embedded Linux from
# ../shared/qt4 (unpacked inside build-set/), C++98, Release; the plug-in and libraries linked
# with -Wl,--no-undefined. Then checks the plug-in file with readelf, nm and objcopy. Where this
# machine runs 32-bit programs it also runs the suites and the shell stand-in there, each as its
# own QWS server on the VNC driver, and saves a screenshot of the page as the set draws it.
#   SET_BUILD_DIR   build folder (default: build-set)
#   QT4_I386_DIR    an unpacked Qt 4.8.4 for i386 to use instead of the tarball
#   SET_SCREENSHOT  where the screenshot goes (default: <build folder>/set-page.png)
set -euo pipefail
cd "$(dirname "$0")/.."
source_dir=$(pwd)

bash scripts/setup.sh
source scripts/qt4.sh

build_dir=${SET_BUILD_DIR:-build-set}
mkdir -p "$build_dir"
build_dir=$(cd "$build_dir" && pwd)
screenshot=${SET_SCREENSHOT:-$build_dir/set-page.png}

if ! qt4_unpack "$build_dir" qt-4.8.4-i386-embedded.tar.xz qt-4.8.4-i386 "${QT4_I386_DIR:-}"; then
    echo "set-build: skipped: $qt4_missing"
    exit 0
fi
qt=$qt4_dir

# Whether this machine runs 32-bit programs; the suites are only built where they can run.
probe=$build_dir/m32-probe
printf 'int main(void) { return 0; }\n' >"$probe.c"
runs_i386=false
gcc -m32 "$probe.c" -o "$probe" 2>/dev/null && "$probe" 2>/dev/null && runs_i386=true

started=$SECONDS
cmake -S . -B "$build_dir" -DOPM_QT=4 "-DQT_QMAKE_EXECUTABLE=$qt/bin/qmake" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
    "-DBUILD_TESTING=$($runs_i386 && echo ON || echo OFF)" \
    -DCMAKE_CXX_FLAGS=-m32 -DCMAKE_EXE_LINKER_FLAGS=-m32 \
    "-DCMAKE_SHARED_LINKER_FLAGS=-m32 -Wl,--no-undefined" \
    "-DCMAKE_MODULE_LINKER_FLAGS=-m32 -Wl,--no-undefined" >/dev/null
cmake --build "$build_dir" -j "$(nproc)"
echo "set-build: built in $((SECONDS - started)) s"

# --- What the set gets -------------------------------------------------------------------
failures=0
check() { # check <what> <command...>
    local what=$1
    shift
    if "$@"; then
        echo "set-build: ok   $what"
    else
        echo "set-build: FAIL $what"
        failures=$((failures + 1))
    fi
}

plugin=$build_dir/src/libopmplugin.so
expected=$build_dir/verification.txt
printf 'pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.4\ndebug=true\nbuildkey=i386 linux g++-4 full-config\0' \
    >"$expected"

is_i386() { local header; header=$(readelf -h "$1") && [[ $header == *"Class:"*ELF32* && $header == *"Machine:"*"Intel 80386"* ]]; }
section_is_text() {
    objcopy -O binary --only-section=.qtplugin "$plugin" "$build_dir/qtplugin.bin" \
        && cmp -s "$build_dir/qtplugin.bin" "$expected"
}
exports() { nm -D --defined-only "$plugin" | grep -E " T $1\$" >/dev/null; }
linked_no_undefined() { grep -q -- '--no-undefined' "$build_dir/src/CMakeFiles/opmplugin.dir/link.txt"; }
# The plug-in needs that Qt's QtGui and QtCore, the set's platform library and the C and C++
# run-times; nothing else.
needs_only_set_libraries() {
    local needed
    needed=$(readelf -d "$plugin" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | sort | tr '\n' ' ')
    [[ $needed == "libQtCore.so.4 libQtGui.so.4 libbrovaplatform.so.1 libc.so.6 libgcc_s.so.1 libm.so.6 libstdc++.so.6 " ]] \
        || { echo "set-build: the plug-in needs: $needed"; return 1; }
}
resolves_to_that_qt() {
    readelf -d "$plugin" | grep "R.*PATH.*$qt/lib" >/dev/null
}
no_qt5() { ! readelf -dW --dyn-syms "$plugin" | grep -E 'Qt5|Qt_5' >/dev/null; }
# The layout checks (OPM_STATIC_ASSERT) of the record and Result are compiled under -m32.
layout_checked_m32() {
    local unit
    for unit in src/opmShareRecord.cpp src/opm.cpp; do
        python3 - "$build_dir/compile_commands.json" "$source_dir/$unit" <<'PY' || return 1
import json, sys
commands = [c["command"] for c in json.load(open(sys.argv[1])) if c["file"] == sys.argv[2]]
sys.exit(0 if commands and all("-m32" in c and "-std=c++98" in c for c in commands) else 1)
PY
    done
    grep -q OPM_STATIC_ASSERT "$source_dir/src/opmShareRecord.h" && grep -q OPM_STATIC_ASSERT "$source_dir/src/opm.h"
}

check "ELF 32-bit Intel 80386: plug-in, platform library, program" \
    bash -c "$(declare -f is_i386); is_i386 '$plugin' && is_i386 '$build_dir/platform/libbrovaplatform.so' && is_i386 '$build_dir/src/opm'"
check ".qtplugin section holds exactly the verification text" section_is_text
check "exports qt_plugin_instance" exports qt_plugin_instance
check "exports qt_plugin_query_verification_data" exports qt_plugin_query_verification_data
check "linked with -Wl,--no-undefined" linked_no_undefined
check "needs only QtGui, QtCore, the platform library and the run-times" needs_only_set_libraries
check "linked against $qt" resolves_to_that_qt
check "no reference to Qt 5" no_qt5
check "record and Result layout checked at compile time with -m32 -std=c++98" layout_checked_m32

if ((failures > 0)); then
    echo "set-build: $failures check(s) failed"
    exit 1
fi

# --- Run it, where 32-bit programs run -------------------------------------------------------
if ! $runs_i386; then
    echo "set-build: this machine does not run 32-bit programs; the set build was only linked and checked"
    exit 0
fi

export LD_LIBRARY_PATH=$qt/lib QT_QWS_FONTDIR=$qt/lib/fonts
# Qt for Embedded Linux has no fontconfig: the Chinese glyphs must be in its font folder.
cp -u /usr/share/fonts/truetype/wqy/wqy-microhei.ttc "$QT_QWS_FONTDIR/"
# A display number of its own for every program: the VNC port 5900+N and /tmp/qtembedded-N free.
next_display() {
    python3 - "${1:-20}" <<'PY'
import os, socket, sys
for n in range(int(sys.argv[1]), 100):
    if os.path.exists("/tmp/qtembedded-%d" % n) and os.stat("/tmp/qtembedded-%d" % n).st_uid != os.getuid():
        continue
    s = socket.socket()
    try:
        s.bind(("0.0.0.0", 5900 + n))
    except OSError:
        continue
    finally:
        s.close()
    print(n)
    break
PY
}

# Every suite, one after another, each its own QWS server. QtTest suites with a QApplication
# are servers by -qws; the others (and the programs suites start) make themselves servers or
# need none.
# Suites that cannot run on this 64-bit host, by name (none now: tst_opmplugin's slow-start
# functions skip themselves where the PC's 64-bit /bin/sh cannot take their 32-bit library).
not_here=" "
started=$SECONDS
suites_passed=0
suites_failed=()
suites_not_here=()
display=20
while IFS=$'\t' read -r name timeout workdir command; do
    if [[ $not_here == *" $name "* ]]; then
        suites_not_here+=("$name")
        continue
    fi
    display=$(next_display "$display")
    read -r -a argv <<<"$command"
    symbols=$(nm -D --undefined-only "${argv[0]}" 2>/dev/null || true)
    if [[ $symbols == *_ZN5QTest5qExec* && $symbols == *_ZN12QApplicationC* ]]; then
        argv+=(-qws)
    fi
    if (cd "$workdir" && QWS_DISPLAY="VNC:size=800x480:depth=32:$display" \
            timeout "$timeout" "${argv[@]}" >"$build_dir/$name.log" 2>&1); then
        suites_passed=$((suites_passed + 1))
    else
        suites_failed+=("$name")
        tail -n 20 "$build_dir/$name.log"
    fi
    display=$((display + 1))
done < <(cd "$build_dir" && ctest --show-only=json-v1 | python3 -c '
import json, sys
for test in json.load(sys.stdin)["tests"]:
    props = {p["name"]: p["value"] for p in test.get("properties", [])}
    print("\t".join([test["name"], str(int(props.get("TIMEOUT", 120))),
                     props.get("WORKING_DIRECTORY", "."), " ".join(test["command"])]))
')
echo "set-build: i386 QWS suites: $suites_passed passed, ${#suites_failed[@]} failed${suites_failed:+ (${suites_failed[*]})}" \
     "in $((SECONDS - started)) s${suites_not_here:+; not run on this 64-bit host: ${suites_not_here[*]}}"

# The shell stand-in loads the demo plug-in through QPluginLoader, with the simulated reader
# live below the demo root, and grabs the page as the set draws it.
source scripts/demoRoot.sh
stop_demo_on_exit
prepare_root
display=$(next_display "$display")
rm -f "$screenshot"
(cd "$root" && QWS_DISPLAY="VNC:size=800x480:depth=32:$display" timeout 60 \
    "$build_dir/tools/opmshell/opmshell" --plugin "$build_dir/src/libopmplugin_demo.so" \
    --autostart --screenshot-at "3.5:$screenshot" --quit-after 4) >"$build_dir/opmshell.log" 2>&1 \
    && [[ -s $screenshot ]] && grep -q "start -> true" "$build_dir/opmshell.log" \
    && echo "set-build: i386 QWS shell: plug-in loaded through QPluginLoader, screenshot $screenshot" \
    || { cat "$build_dir/opmshell.log"; echo "set-build: FAIL i386 QWS shell"; suites_failed+=(opmshell); }

[[ ${#suites_failed[@]} -eq 0 ]]
