#!/usr/bin/env bash
# Measures the optical power meter against the floor program (bench/floor) on both toolkits in
# one run, Qt 5.15 (offscreen) and Qt 4.8.4 (the set's toolkit, x86-64, raster engine on Xvfb),
# each product against the floor built with the same Qt, and prints one table: start-up,
# instructions per tick, idle CPU and peak memory (docs/performance.md). Not part of the tests.
#   BUILD_DIR             Qt 5 bench build folder (default: ./build-bench of the checkout)
#   QT4_BUILD_DIR         Qt 4 bench build folder (default: ./build-bench-qt4); QT4_DIR names an
#                         unpacked Qt 4.8.4 instead of ../shared/qt4's tarball
#   BENCH_RUNS            start-up runs per figure, the median is shown (default 7)
#   BENCH_CALLGRIND_RUNS  callgrind runs per figure (default 3; they differ by a few hundred
#                         instructions a tick)
#   BENCH_IDLE_RUNS       runs of the idle measurement (default 3)
#   BENCH_IDLE_SECONDS    length of one idle measurement (default 60)
#   BENCH_TICKS           ticks per callgrind run (default 500)
set -euo pipefail

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
runs=${BENCH_RUNS:-7}
callgrind_runs=${BENCH_CALLGRIND_RUNS:-3}
idle_runs=${BENCH_IDLE_RUNS:-3}
idle_seconds=${BENCH_IDLE_SECONDS:-60}
ticks=${BENCH_TICKS:-500}
started=$SECONDS

note() { echo "bench: $*" >&2; }

# --- what it needs ------------------------------------------------------------------------------

bash "$source_dir/scripts/setup.sh" valgrind
source "$source_dir/scripts/qt4.sh"

declare -A build_of qt_env
toolkits=(5)
build_of[5]=$(mkdir -p "${BUILD_DIR:-$source_dir/build-bench}" && cd "${BUILD_DIR:-$source_dir/build-bench}" && pwd)
build_of[4]=$(mkdir -p "${QT4_BUILD_DIR:-$source_dir/build-bench-qt4}" && cd "${QT4_BUILD_DIR:-$source_dir/build-bench-qt4}" && pwd)
qt_env[5]="QT_QPA_PLATFORM=offscreen"
configure=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DOPM_SANITIZE=OFF)
command -v ccache >/dev/null && configure+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)

targets=(opm_demo opmplugin_demo opm_bench opmplugin_bench opmshell lumenProbe opmfloor
         opmfloor_bench bench_ticks)
# bench_build <toolkit> <cmake arguments...>
bench_build() {
    local dir=${build_of[$1]}
    shift
    mkdir -p "$dir/bench-log"
    cmake -S "$source_dir" -B "$dir" "${configure[@]}" "$@" >/dev/null
    cmake --build "$dir" -j "$(nproc 2>/dev/null || echo 2)" --target "${targets[@]}" \
        >"$dir/bench-log/build.txt"
}

bench_build 5 -DOPM_QT=5
qt4_note=''
if qt4_unpack "${build_of[4]}" qt-4.8.4-x86_64.tar.xz qt-4.8.4 "${QT4_DIR:-}"; then
    bench_build 4 -DOPM_QT=4 "-DQT_QMAKE_EXECUTABLE=$qt4_dir/bin/qmake"
    toolkits+=(4)
else
    qt4_note="Qt 4.8.4 not measured: $qt4_missing"
    note "$qt4_note"
fi

helpers=()
readers=()
# By its path: only a demo root's reader, never one of another run or of the tests.
kill_readers() { for r in "${readers[@]}"; do killall -q -9 "$r" 2>/dev/null || true; done; }
trap 'for pid in "${helpers[@]}"; do kill "$pid" 2>/dev/null || true; done; kill_readers' EXIT

# Qt 4 has no offscreen platform: one Xvfb for the whole run, so that no figure includes its start.
if [[ " ${toolkits[*]} " == *" 4 "* ]]; then
    display_file=${build_of[4]}/bench-log/xvfb-display
    rm -f "$display_file"
    Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$display_file" \
        2>"${build_of[4]}/bench-log/xvfb.txt" &
    helpers+=($!)
    for ((i = 0; i < 100; i++)); do
        [[ -s $display_file ]] && break
        sleep 0.1
    done
    [[ -s $display_file ]] || { note "Xvfb did not start (see ${build_of[4]}/bench-log/xvfb.txt)"; exit 1; }
    qt_env[4]="LD_LIBRARY_PATH=$qt4_dir/lib DISPLAY=:$(head -n 1 "$display_file")"
fi

# Each build's demo root, reader and programs; use_toolkit <toolkit> points the names below at
# one of them.
declare -A root_of reader_of
for tk in "${toolkits[@]}"; do
    build_dir=${build_of[$tk]}
    source "$source_dir/scripts/demoRoot.sh"
    prepare_root
    root_of[$tk]=$root
    reader_of[$tk]=$reader
    readers+=("$reader")
done
use_toolkit() {
    tk=$1
    build_dir=${build_of[$tk]}
    log=$build_dir/bench-log
    root=${root_of[$tk]}
    reader=${reader_of[$tk]}
    opm_demo=$build_dir/src/opm_demo
    opm_bench=$build_dir/bench/opm_bench
    plugin_demo=$build_dir/src/libopmplugin_demo.so
    plugin_bench=$build_dir/bench/libopmplugin_bench.so
    shell=$build_dir/tools/opmshell/opmshell
    floor=$build_dir/bench/opmfloor
    floor_bench=$build_dir/bench/opmfloor_bench
    ticker=$build_dir/bench/bench_ticks
    probe=$build_dir/tools/lumenProbe/lumenProbe
    # shellcheck disable=SC2206
    run=(env ${qt_env[$tk]})
    # The shared record's key follows the working folder.
    cd "$root"
}

# --- helpers ----------------------------------------------------------------------------------

median() { printf '%s\n' "$@" | sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

now_us() { echo "${EPOCHREALTIME/./}"; }

probe_field() { sed -n "s/.*bench-probe:.* $1=\([0-9]*\).*/\1/p" "$2"; }

# cpu_ticks <pid>: utime + stime from /proc/<pid>/stat (fields 14 and 15; comm may hold blanks).
cpu_ticks() {
    [[ -e /proc/$1/stat ]] || { note "process $1 has ended early (see $log/idle-*.txt)"; return 1; }
    sed 's/.*) //' "/proc/$1/stat" | awk '{ print $12 + $13 }'
}

peak_kb() { awk '/^VmHWM:/ { print $2 }' "/proc/$1/status"; }

load() { cut -d ' ' -f 1 /proc/loadavg; }

# --- start-up ---------------------------------------------------------------------------------

declare -A startup paint memory widgets loads
# startup_run <name> <command...>: runs a probe build until it has painted its first reading.
startup_run() {
    local name=$tk-$1 out=$log/startup-$1.txt t0
    shift
    t0=$(now_us)
    timeout 60 "${run[@]}" "$@" >"$out" 2>&1 || true
    kill_readers
    local reading first kb count
    reading=$(probe_field first-reading-us "$out")
    first=$(probe_field first-paint-us "$out")
    kb=$(probe_field vmhwm-kb "$out")
    count=$(probe_field widgets "$out")
    if [[ -z $reading ]]; then
        note "$name showed no reading (see $out)"
        return 1
    fi
    startup[$name]+=" $(((reading - t0) / 1000))"
    paint[$name]+=" $(((first - t0) / 1000))"
    memory[$name]+=" $kb"
    widgets[$name]=$count
}

# The floor reads the record that a reader left; it starts no reader itself. It gets as many
# widgets as the main page has.
declare -A floor_widgets
for tk in "${toolkits[@]}"; do
    use_toolkit "$tk"
    "$probe" --once >/dev/null
    startup_run count "$opm_bench"
    floor_widgets[$tk]=${widgets[$tk-count]}
    note "Qt $tk: the main page has ${floor_widgets[$tk]} widgets; the floor gets as many"
done

declare -A commands
time_command() {
    local t0
    t0=$(now_us)
    sh -c "$2" >/dev/null 2>&1
    commands[$1]+=" $((($(now_us) - t0) / 1000))"
}

# Both toolkits in each round, so that a busy spell of the machine falls on both alike.
for ((i = 1; i <= runs; i++)); do
    note "start-up run $i of $runs (load $(load))"
    loads[startup]+=" $(load)"
    for tk in "${toolkits[@]}"; do
        use_toolkit "$tk"
        "$probe" --once >/dev/null
        startup_run floor "$floor_bench" --widgets "${floor_widgets[$tk]}"
        startup_run opm "$opm_bench"
        startup_run shell "$shell" --plugin "$plugin_bench" --autostart
    done
    # What the page runs through system(): sh -c "<reader> &" and sh -c "killall -9 <reader>".
    time_command start "'$reader' &"
    sleep 0.3
    time_command kill "killall -9 '$reader'"
done

# --- instructions per tick ----------------------------------------------------------------------

# instructions <page|floor|floor-look> <changing|unchanged|moving> <ticks>: total Ir of one callgrind run.
instructions() {
    local out=$log/callgrind-$1-$2-$3.out
    "${run[@]}" valgrind --tool=callgrind --callgrind-out-file="$out" \
        "$ticker" "$1" "$2" "$3" >/dev/null 2>"$log/callgrind-$1-$2-$3.txt"
    awk '/^(summary|totals):/ { print $2; exit }' "$out"
}

declare -A per_tick paints
for tk in "${toolkits[@]}"; do
    use_toolkit "$tk"
    cd "$build_dir"
    for ((i = 1; i <= callgrind_runs; i++)); do
        note "Qt $tk: callgrind run $i of $callgrind_runs"
        for program in page floor floor-look; do
            base=$(instructions "$program" unchanged 0)
            for mode in changing unchanged moving; do
                # An unchanged reading repaints nothing, whatever its look.
                [[ $program == floor-look && $mode == unchanged ]] && continue
                total=$(instructions "$program" "$mode" "$ticks")
                per_tick[$tk-$program-$mode]+=" $(((total - base) / ticks))"
            done
        done
    done
    for program in page floor; do
        for mode in changing unchanged moving; do
            paints[$tk-$program-$mode]=$("${run[@]}" "$ticker" "$program" "$mode" 50 --paints 2>&1 \
                >/dev/null | sed -n 's/^paints-per-tick //p')
        done
    done
done

# --- idle CPU and memory ------------------------------------------------------------------------

declare -A idle settled
# idle_run <name> <command...>: the program beside the floor, both left alone with the Setup
# tab showing for idle_seconds.
idle_run() {
    local name=$1 program floor_pid
    shift
    "${run[@]}" "$@" >"$log/idle-$name.txt" 2>&1 &
    program=$!
    helpers+=("$program")
    sleep 1
    "${run[@]}" "$floor" --widgets "${floor_widgets[$tk]}" >"$log/idle-floor.txt" 2>&1 &
    floor_pid=$!
    helpers+=("$floor_pid")
    sleep 5
    local p0 f0 p1 f1 hz
    hz=$(getconf CLK_TCK)
    p0=$(cpu_ticks "$program")
    f0=$(cpu_ticks "$floor_pid")
    sleep "$idle_seconds"
    p1=$(cpu_ticks "$program")
    f1=$(cpu_ticks "$floor_pid")
    idle[$tk-$name]+=" $(awk -v d=$((p1 - p0)) -v hz="$hz" -v s="$idle_seconds" 'BEGIN { printf "%.3f", 100 * d / hz / s }')"
    idle[$tk-floor-$name]+=" $(awk -v d=$((f1 - f0)) -v hz="$hz" -v s="$idle_seconds" 'BEGIN { printf "%.3f", 100 * d / hz / s }')"
    settled[$tk-$name]+=" $(peak_kb "$program")"
    settled[$tk-floor-$name]+=" $(peak_kb "$floor_pid")"
    # env replaced itself with the program: these are the programs' own ids.
    kill -TERM "$program" "$floor_pid" 2>/dev/null || true
    wait "$program" "$floor_pid" 2>/dev/null || true
    kill_readers
}

for ((i = 1; i <= idle_runs; i++)); do
    for tk in "${toolkits[@]}"; do
        use_toolkit "$tk"
        note "Qt $tk: idle run $i of $idle_runs (2 x ${idle_seconds} s)"
        idle_run opm "$opm_demo"
        idle_run shell "$shell" --plugin "$plugin_demo" --autostart
    done
done

# The shell stand-in's own share: the plug-in loaded and verified, but not started.
declare -A shell_alone
for tk in "${toolkits[@]}"; do
    use_toolkit "$tk"
    for ((i = 1; i <= runs; i++)); do
        "${run[@]}" "$shell" --plugin "$plugin_demo" >"$log/shell-alone.txt" 2>&1 &
        pid=$!
        helpers+=("$pid")
        sleep 4
        shell_alone[$tk]+=" $(peak_kb "$pid")"
        kill -TERM "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    done
done

# --- the table --------------------------------------------------------------------------------

# shellcheck disable=SC2086
m() { median $1; }
mib() { awk -v kb="$1" 'BEGIN { printf "%.1f MiB", kb / 1024 }'; }
percent() { awk -v r="$1" -v f="$2" 'BEGIN { printf "%+.1f %%", 100 * (r - f) / f }'; }
ratio() { awk -v r="$1" -v f="$2" 'BEGIN { printf "%.2f ×", r / f }'; }
# met <condition as awk expression>
met() { awk "BEGIN { print ($1) ? \"met\" : \"missed\" }"; }

# row <measure> <program> <target> <cell function>: one line, the cell function printing
# "real | floor | result" for the toolkit in tk.
row() {
    local line="| $1 | $2 |"
    for tk in 5 4; do
        if [[ " ${toolkits[*]} " == *" $tk "* ]]; then
            line+=" $($4) |"
        else
            line+=" - | - | - |"
        fi
    done
    echo "$line $3 |"
}

start_ms=$(m "${commands[start]}")
kill_ms=$(m "${commands[kill]}")

cell_paint() {
    local r f
    r=$(m "${paint[$tk-$program]}")
    f=$(m "${paint[$tk-floor]}")
    echo "$r ms | $f ms | $(ratio "$r" "$f") $(met "$r <= 1.3 * $f")"
}
cell_reading() {
    local r f limit
    r=$(m "${startup[$tk-$program]}")
    f=$(m "${startup[$tk-floor]}")
    # opm starts the reader once; the plug-in starts it, kills it and starts it again (enterInit).
    if [[ $program == opm ]]; then
        limit=$(awk -v f="$f" -v s="$start_ms" 'BEGIN { printf "%d", 1.5 * f + s }')
    else
        limit=$(awk -v f="$f" -v s="$start_ms" -v k="$kill_ms" 'BEGIN { printf "%d", 1.5 * f + 2 * s + k }')
    fi
    echo "$r ms | $f ms | $(met "$r <= $limit")"
}
cell_tick() {
    local r f
    r=$(m "${per_tick[$tk-page-$mode]}")
    f=$(m "${per_tick[$tk-floor-$mode]}")
    echo "$r | $f | $(percent "$r" "$f") $(met "$r <= 1.05 * $f")"
}
# The floor with the reading in the tab's look: what remains is the page's own cost.
cell_tick_look() {
    local r f
    r=$(m "${per_tick[$tk-page-$mode]}")
    f=$(m "${per_tick[$tk-floor-look-$mode]}")
    echo "$r | $f | $(percent "$r" "$f") $(met "$r <= 1.05 * $f")"
}
cell_paints() { echo "${paints[$tk-page-$mode]} | ${paints[$tk-floor-$mode]} | -"; }
cell_idle() {
    local r f
    r=$(m "${idle[$tk-$program]}")
    f=$(m "${idle[$tk-floor-$program]}")
    echo "$r % | $f % | $(met "$r < 0.5")"
}
# Qt 4, the set's toolkit: within 2 MiB of the floor; Qt 5 within 4 MiB.
memory_cell() {
    local budget=$((tk == 4 ? 2048 : 4096))
    echo "$(mib "$1") | $(mib "$2") | $(awk -v d=$(($1 - $2)) 'BEGIN { printf "%+.1f MiB", d / 1024 }') $(met "$1 <= $2 + $budget")"
}
cell_memory() { memory_cell "$(m "${memory[$tk-$program]}")" "$(m "${memory[$tk-floor]}")"; }
cell_settled() { memory_cell "$(m "${settled[$tk-$program]}")" "$(m "${settled[$tk-floor-$program]}")"; }
cell_alone() { echo "$(mib "$(m "${shell_alone[$tk]}")") | $(mib "$(m "${memory[$tk-floor]}")") | -"; }

label_of() { [[ $1 == opm ]] && echo opm_demo || echo "opmshell + plug-in"; }

echo
echo "Machine: $(nproc) cores, $(sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -n 1);" \
    "Qt $(pkg-config --modversion Qt5Core 2>/dev/null || echo 5) (offscreen) and Qt 4.8.4 (x86-64, raster, Xvfb);" \
    "$(date -u '+%Y-%m-%d %H:%M UTC')"
echo "Runs: start-up $runs, callgrind $callgrind_runs ($ticks ticks), idle $idle_runs x ${idle_seconds} s;" \
    "medians; load average during the start-up runs: $(m "${loads[startup]}") (median of$(printf ' %s' ${loads[startup]}));" \
    "floor: as many widgets as the main page (Qt 5: ${floor_widgets[5]}, Qt 4: ${floor_widgets[4]:--})"
[[ -z $qt4_note ]] || echo "$qt4_note"
echo
echo "| measure | program | Qt 5.15 | floor | result | Qt 4.8.4 | floor | result | target |"
echo "|---|---|---|---|---|---|---|---|---|"
echo "| reader start command (sh -c \"<reader> &\") | - | ${start_ms} ms | - | - | ${start_ms} ms | - | - | - |"
echo "| reader kill command (sh -c \"killall -9 <reader>\") | - | ${kill_ms} ms | - | - | ${kill_ms} ms | - | - | - |"
for program in opm shell; do
    row "start-up: process start to first paint" "$(label_of $program)" "≤ 1.3 × floor" cell_paint
done
for program in opm shell; do
    row "start-up: process start to first reading painted" "$(label_of $program)" \
        "≤ 1.5 × floor + reader starts and kill" cell_reading
done
# changing: by 0.01 dB, the bar's marker stays; moving: by 2 dB, the marker moves.
for mode in changing unchanged moving; do
    row "instructions per tick, reading $mode (painting included)" "Setup tab" "≤ floor + 5 %" cell_tick
    row "widgets painted per tick, reading $mode" "Setup tab" "-" cell_paints
done
for mode in changing moving; do
    row "instructions per tick, reading $mode, against the floor with the tab's reading look" \
        "Setup tab" "≤ floor + 5 %" cell_tick_look
done
for program in opm shell; do
    row "idle CPU, Setup tab shown, ${idle_seconds} s" "$(label_of $program)" "< 0.5 %" cell_idle
done
for program in opm shell; do
    row "peak resident (VmHWM) at first reading" "$(label_of $program)" \
        "≤ floor + 4 MiB (Qt 4: + 2 MiB)" cell_memory
done
for program in opm shell; do
    row "peak resident (VmHWM) after the idle run" "$(label_of $program)" \
        "≤ floor + 4 MiB (Qt 4: + 2 MiB)" cell_settled
done
row "peak resident (VmHWM), plug-in loaded but not started" "opmshell alone" "-" cell_alone
echo
echo "bench: took $(((SECONDS - started) / 60)) min $(((SECONDS - started) % 60)) s"
