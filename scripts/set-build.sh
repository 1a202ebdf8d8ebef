#!/usr/bin/env bash
# Builds the product as the set runs it: 32-bit x86 (-m32), Qt 4.8.4 for Embedded Linux from
# ../shared/qt4 (unpacked inside build-set/), C++98, Release; the plug-in and libraries linked
# with -Wl,--no-undefined. Then checks the plug-in file with readelf, nm and objcopy, and runs
# the suites and the shell stand-in, each as its own QWS server on the VNC driver, and saves a
# screenshot of the page as the set draws it, in English and in Simplified Chinese. Where the kernel runs no 32-bit program they run
# under qemu-i386 (Debian's qemu-user); the programs the plug-in starts through the shell (the
# reader, the slow-start library) are then built for this PC in build-set/host, since the
# PC's own /bin/sh runs them (see docs/release.md).
#   SET_BUILD_DIR   build folder (default: build-set)
#   QT4_I386_DIR    an unpacked Qt 4.8.4 for i386 to use instead of the tarball
#   SET_SCREENSHOT  where the screenshot goes (default: <build folder>/set-page.png; the Chinese
#                   one beside it, named *-zh_CN.png)
#   SET_JOBS        suites run at once (default: the number of CPUs)
set -euo pipefail
cd "$(dirname "$0")/.."
source_dir=$(pwd)

bash scripts/setup.sh
source scripts/qt4.sh
source scripts/setConfig.sh

build_dir=${SET_BUILD_DIR:-build-set}
mkdir -p "$build_dir"
build_dir=$(cd "$build_dir" && pwd)
screenshot=${SET_SCREENSHOT:-$build_dir/set-page.png}

if ! qt4_unpack "$build_dir" qt-4.8.4-i386-embedded.tar.xz qt-4.8.4-i386 "${QT4_I386_DIR:-}"; then
    echo "set-build: skipped: $qt4_missing"
    exit 0
fi
qt=$qt4_dir

# How this machine runs 32-bit programs; the suites are only built where they can run.
set_runner "$build_dir"
runs_i386=$([[ $i386_runner != none ]] && echo true || echo false)

started=$SECONDS
set_configure "$build_dir" "$qt" "" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
    "-DBUILD_TESTING=$($runs_i386 && echo ON || echo OFF)"
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

# --- Run it: natively where the kernel runs 32-bit programs, else under qemu-i386 ------------
if ! $runs_i386; then
    echo "set-build: this machine runs no 32-bit program and has no qemu-i386 (Debian's qemu-user);" \
         "the set build was only linked and checked"
    exit 0
fi

export LD_LIBRARY_PATH=$qt/lib QT_QWS_FONTDIR=$qt/lib/fonts
# Qt for Embedded Linux has no fontconfig: the Chinese glyphs must be in its font folder.
cp -u /usr/share/fonts/truetype/wqy/wqy-microhei.ttc "$QT_QWS_FONTDIR/"
# Under emulation an exec from an emulated program is the host kernel's own: the PC's 64-bit
# /bin/sh that system() starts cannot run a 32-bit reader or take a 32-bit LD_PRELOAD library,
# and a 32-bit program cannot be exec'd at all without binfmt. So the programs the plug-in
# starts through the shell are built for this PC (as on the set, the reader is a process of
# its own, bound to the page by the shared record alone), and the 32-bit programs the suites
# start themselves go through a script that runs them under qemu-i386.
host_helpers() {
    local host=$build_dir/host target file
    cmake -S . -B "$host" -DOPM_QT=5 -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=ON \
        $(command -v ccache >/dev/null && echo -DCMAKE_CXX_COMPILER_LAUNCHER=ccache) >/dev/null
    cmake --build "$host" -j "$(nproc)" --target lumenProbe readerStandIn slowReaderStart brokenReader >/dev/null
    for file in tools/lumenProbe/lumenProbe tests/readerStandIn tests/libslowReaderStart.so \
        tests/brokenReader; do
        cmp -s "$host/$file" "$build_dir/$file" || cp -f "$host/$file" "$build_dir/$file"
    done
    # A fresh link replaces the script by the program, which then moves aside again.
    for target in tools/opmshell/opmshell tools/opmrecord/opmrecord; do
        file=$build_dir/$target
        if is_i386 "$file" 2>/dev/null; then
            mv -f "$file" "$file.i386"
            printf '#!/bin/sh\nexec qemu-i386 "$0.i386" "$@"\n' >"$file"
            chmod +x "$file"
        fi
    done
}
# The 32-bit program at a path the build gave (the script's program under emulation).
i386_program() { if [[ -f $1.i386 ]]; then echo "$1.i386"; else echo "$1"; fi; }
# qemu-i386 keeps the threads' TLS entries in one table for the whole process: a signal taken
# on the main thread once Qt 4's QProcess has started its thread leaves the main thread with that
# thread's TLS. The suites get a library that keeps SIGCHLD off their main thread.
suite_run=("${i386_run[@]}")
if [[ $i386_runner = emulated ]]; then
    host_helpers
    gcc -m32 -shared -fPIC -O2 -Wall -Wextra -Werror tests/support/qemuSignalShim.c \
        -o "$build_dir/host/libqemuSignalShim.so" -ldl
    suite_run+=(-E "LD_PRELOAD=$build_dir/host/libqemuSignalShim.so")
    echo "set-build: running under qemu-i386; the reader and the slow-start library built for this PC"
fi

# Every suite, each its own QWS server on a display of its own, SET_JOBS at once. QtTest suites
# with a QApplication are servers by -qws; the others (and the programs suites start) make
# themselves servers or need none. Emulation takes some times longer: so do the time limits.
parallel=${SET_JOBS:-$(nproc)}
slower=$([[ $i386_runner = emulated ]] && echo 3 || echo 1)
started=$SECONDS
results=$build_dir/suite-results
rm -rf "$results"
mkdir -p "$results"
# A suite that is no 32-bit program (a check of the sources by a script) runs as it is.
run_suite() { # run_suite <name> <timeout> <workdir> <display> <argv...>
    local name=$1 timeout=$2 workdir=$3 display=$4 runner=()
    shift 4
    is_i386 "$1" 2>/dev/null && runner=("${suite_run[@]}")
    if (cd "$workdir" && QWS_DISPLAY="VNC:size=800x480:depth=32:$display" \
            timeout "$((timeout * slower))" "${runner[@]}" "$@" \
            >"$build_dir/$name.log" 2>&1) 2>/dev/null; then
        echo passed >"$results/$name"
    else
        echo failed >"$results/$name"
    fi
}
display=20
while IFS=$'\t' read -r name timeout workdir command; do
    display=$(next_display "$display")
    read -r -a argv <<<"$command"
    argv[0]=$(i386_program "${argv[0]}")
    symbols=$(nm -D --undefined-only "${argv[0]}" 2>/dev/null || true)
    if [[ $symbols == *_ZN5QTest5qExec* && $symbols == *_ZN12QApplicationC* ]]; then
        argv+=(-qws)
    fi
    while (($(jobs -rp | wc -l) >= parallel)); do wait -n || true; done
    run_suite "$name" "$timeout" "$workdir" "$display" "${argv[@]}" &
    display=$((display + 1))
done < <(cd "$build_dir" && ctest --show-only=json-v1 | python3 -c '
import json, sys
for test in json.load(sys.stdin)["tests"]:
    props = {p["name"]: p["value"] for p in test.get("properties", [])}
    print("\t".join([test["name"], str(int(props.get("TIMEOUT", 120))),
                     props.get("WORKING_DIRECTORY", "."), " ".join(test["command"])]))
')
wait
suites_passed=0
suites_failed=()
for result in "$results"/*; do
    name=$(basename "$result")
    if [[ $(cat "$result") = passed ]]; then
        suites_passed=$((suites_passed + 1))
    else
        suites_failed+=("$name")
        tail -n 20 "$build_dir/$name.log"
    fi
done
echo "set-build: i386 QWS suites ($i386_runner): $suites_passed passed," \
     "${#suites_failed[@]} failed${suites_failed:+ (${suites_failed[*]})} in $((SECONDS - started)) s"

# The shell stand-in loads the demo plug-in through QPluginLoader, with the simulated reader
# live below the demo root, and grabs the page as the set draws it.
source scripts/demoRoot.sh
stop_demo_on_exit
prepare_root
# shell_shot <screenshot> [shell option...]
shell_shot() {
    local shot=$1
    shift
    display=$(next_display "$display")
    rm -f "$shot"
    (cd "$root" && QWS_DISPLAY="VNC:size=800x480:depth=32:$display" timeout $((60 * slower)) \
        "${i386_run[@]}" "$(i386_program "$build_dir/tools/opmshell/opmshell")" \
        --plugin "$build_dir/src/libopmplugin_demo.so" "$@" \
        --autostart --screenshot-at "3.5:$shot" --quit-after 4) >"$build_dir/opmshell.log" 2>&1 \
        && [[ -s $shot ]] && grep -q "start -> true" "$build_dir/opmshell.log" \
        && echo "set-build: i386 QWS shell${*:+ $*}: plug-in loaded through QPluginLoader, screenshot $shot" \
        || { cat "$build_dir/opmshell.log"; echo "set-build: FAIL i386 QWS shell${*:+ $*}"; suites_failed+=(opmshell); }
    display=$((display + 1))
}
shell_shot "$screenshot"
shell_shot "${screenshot%.png}-zh_CN.png" --lang zh_CN

[[ ${#suites_failed[@]} -eq 0 ]]
