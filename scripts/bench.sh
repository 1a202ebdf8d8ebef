#!/usr/bin/env bash
# Measures the optical power meter against the floor program (bench/floor) and prints one
# table: start-up, instructions per tick, idle CPU and peak memory (docs/performance.md).
# Takes about a quarter of an hour; not part of the tests.
#   BUILD_DIR           build folder (default: ./build of the checkout)
#   BENCH_RUNS          runs per figure, the median is shown (default 5)
#   BENCH_IDLE_RUNS     runs of the idle measurement (default 3)
#   BENCH_IDLE_SECONDS  length of one idle measurement (default 60)
#   BENCH_TICKS         ticks per callgrind run (default 500)
set -euo pipefail

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${BUILD_DIR:-$source_dir/build}
build_dir=$(mkdir -p "$build_dir" && cd "$build_dir" && pwd)
runs=${BENCH_RUNS:-5}
idle_runs=${BENCH_IDLE_RUNS:-3}
idle_seconds=${BENCH_IDLE_SECONDS:-60}
ticks=${BENCH_TICKS:-500}
log=$build_dir/bench-log
mkdir -p "$log"

note() { echo "bench: $*" >&2; }

# --- what it needs ------------------------------------------------------------------------------

bash "$source_dir/scripts/setup.sh" valgrind

cmake -S "$source_dir" -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build_dir" -j "$(nproc 2>/dev/null || echo 2)" --target \
    opm_demo opmplugin_demo opm_bench opmplugin_bench opmshell lumenProbe opmfloor opmfloor_bench bench_ticks \
    >"$log/build.txt"

source "$(dirname "${BASH_SOURCE[0]}")/demoRoot.sh"
opm_demo=$build_dir/src/opm_demo
opm_bench=$build_dir/bench/opm_bench
plugin_demo=$build_dir/src/libopmplugin_demo.so
plugin_bench=$build_dir/bench/libopmplugin_bench.so
shell=$build_dir/tools/opmshell/opmshell
floor=$build_dir/bench/opmfloor
floor_bench=$build_dir/bench/opmfloor_bench
ticker=$build_dir/bench/bench_ticks

stop_demo_on_exit

prepare_root
export QT_QPA_PLATFORM=offscreen
# The shared record's key follows the working folder.
cd "$root"

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

# --- start-up ---------------------------------------------------------------------------------

declare -A startup paint memory widgets
# startup_run <name> <command...>: runs a probe build until it has painted its first reading.
startup_run() {
    local name=$1 out=$log/startup-$1.txt t0
    shift
    t0=$(now_us)
    timeout 60 "$@" >"$out" 2>&1 || true
    kill_reader
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

# The floor reads the record that a reader left; it starts no reader itself.
"$build_dir/tools/lumenProbe/lumenProbe" --once >/dev/null
startup_run count "$opm_bench"
floor_widgets=${widgets[count]}
note "the main page has $floor_widgets widgets; the floor gets as many"

declare -A commands
time_command() {
    local t0
    t0=$(now_us)
    sh -c "$2" >/dev/null 2>&1
    commands[$1]+=" $((($(now_us) - t0) / 1000))"
}

for ((i = 1; i <= runs; i++)); do
    note "start-up run $i of $runs"
    "$build_dir/tools/lumenProbe/lumenProbe" --once >/dev/null
    startup_run floor "$floor_bench" --widgets "$floor_widgets"
    startup_run opm "$opm_bench"
    startup_run shell "$shell" --plugin "$plugin_bench" --autostart
    # What the page runs through system(): sh -c "<reader> &" and sh -c "killall -9 <reader>".
    time_command start "'$reader' &"
    sleep 0.3
    time_command kill "killall -9 '$reader'"
done

# --- instructions per tick ----------------------------------------------------------------------

# instructions <page|floor> <changing|unchanged> <ticks>: total Ir of one callgrind run.
instructions() {
    local out=$log/callgrind-$1-$2-$3.out
    valgrind --tool=callgrind --callgrind-out-file="$out" \
        "$ticker" "$1" "$2" "$3" >/dev/null 2>"$log/callgrind-$1-$2-$3.txt"
    awk '/^(summary|totals):/ { print $2; exit }' "$out"
}

declare -A per_tick paints
cd "$build_dir"
for ((i = 1; i <= runs; i++)); do
    note "callgrind run $i of $runs"
    for program in page floor; do
        base=$(instructions "$program" unchanged 0)
        for mode in changing unchanged moving; do
            total=$(instructions "$program" "$mode" "$ticks")
            per_tick[$program-$mode]+=" $(((total - base) / ticks))"
        done
    done
done
for program in page floor; do
    for mode in changing unchanged moving; do
        paints[$program-$mode]=$("$ticker" "$program" "$mode" 50 --paints 2>&1 >/dev/null |
            sed -n 's/^paints-per-tick //p')
    done
done
cd "$root"

# --- idle CPU and memory ------------------------------------------------------------------------

declare -A idle settled
# idle_run <name> <command...>: the program beside the floor, both left alone with the Setup
# tab showing for idle_seconds.
idle_run() {
    local name=$1 program floor_pid
    shift
    "$@" >"$log/idle-$name.txt" 2>&1 &
    program=$!
    helpers+=("$program")
    sleep 1
    "$floor" --widgets "$floor_widgets" >"$log/idle-floor.txt" 2>&1 &
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
    idle[$name]+=" $(awk -v d=$((p1 - p0)) -v hz="$hz" -v s="$idle_seconds" 'BEGIN { printf "%.3f", 100 * d / hz / s }')"
    idle[floor-$name]+=" $(awk -v d=$((f1 - f0)) -v hz="$hz" -v s="$idle_seconds" 'BEGIN { printf "%.3f", 100 * d / hz / s }')"
    settled[$name]+=" $(peak_kb "$program")"
    settled[floor-$name]+=" $(peak_kb "$floor_pid")"
    kill -TERM "$program" "$floor_pid" 2>/dev/null || true
    wait "$program" "$floor_pid" 2>/dev/null || true
    kill_reader
}

for ((i = 1; i <= idle_runs; i++)); do
    note "idle run $i of $idle_runs (2 x ${idle_seconds} s)"
    idle_run opm "$opm_demo"
    idle_run shell "$shell" --plugin "$plugin_demo" --autostart
done

# The shell stand-in's own share: the plug-in loaded and verified, but not started.
declare -a shell_alone
for ((i = 1; i <= runs; i++)); do
    "$shell" --plugin "$plugin_demo" >"$log/shell-alone.txt" 2>&1 &
    pid=$!
    helpers+=("$pid")
    sleep 4
    shell_alone+=("$(peak_kb "$pid")")
    kill -TERM "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
done

# --- the table --------------------------------------------------------------------------------

# shellcheck disable=SC2086
m() { median $1; }
verdict() { awk -v ok="$1" 'BEGIN { print ok ? "met" : "missed" }'; }
mib() { awk -v kb="$1" 'BEGIN { printf "%.1f MiB", kb / 1024 }'; }

start_ms=$(m "${commands[start]}")
kill_ms=$(m "${commands[kill]}")
floor_start=$(m "${startup[floor]}")
opm_start=$(m "${startup[opm]}")
shell_start=$(m "${startup[shell]}")
# opm starts the reader once; the plug-in starts it, kills it and starts it again (enterInit).
opm_limit=$(awk -v f="$floor_start" -v s="$start_ms" 'BEGIN { printf "%d", 1.5 * f + s }')
shell_limit=$(awk -v f="$floor_start" -v s="$start_ms" -v k="$kill_ms" 'BEGIN { printf "%d", 1.5 * f + 2 * s + k }')
floor_mem=$(m "${memory[floor]}")

echo
echo "Machine: $(nproc) cores, $(sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -n 1);" \
    "Qt $(pkg-config --modversion Qt5Core 2>/dev/null || echo 5); $(date -u '+%Y-%m-%d %H:%M UTC')"
echo "Runs: $runs per figure (idle: $idle_runs x ${idle_seconds} s); medians; QT_QPA_PLATFORM=offscreen;" \
    "floor: $floor_widgets widgets, as many as the main page of opm_bench"
echo
echo "| measure | program | real | floor | target | result |"
echo "|---|---|---|---|---|---|"
echo "| reader start command (sh -c \"<reader> &\") | - | ${start_ms} ms | - | - | - |"
echo "| reader kill command (sh -c \"killall -9 <reader>\") | - | ${kill_ms} ms | - | - | - |"
echo "| start-up: process start to first paint | opm_demo | $(m "${paint[opm]}") ms | $(m "${paint[floor]}") ms | - | - |"
echo "| start-up: process start to first paint | opmshell + plug-in | $(m "${paint[shell]}") ms | $(m "${paint[floor]}") ms | - | - |"
echo "| start-up: process start to first reading painted | opm_demo | ${opm_start} ms | ${floor_start} ms | <= 1.5 x floor + start = ${opm_limit} ms | $(verdict $((opm_start <= opm_limit))) |"
echo "| start-up: process start to first reading painted | opmshell + plug-in | ${shell_start} ms | ${floor_start} ms | <= 1.5 x floor + 2 starts + kill = ${shell_limit} ms | $(verdict $((shell_start <= shell_limit))) |"
# changing: by 0.01 dB, the bar's marker stays; moving: by 2 dB, the marker moves.
for mode in changing unchanged moving; do
    real=$(m "${per_tick[page-$mode]}")
    base=$(m "${per_tick[floor-$mode]}")
    echo "| instructions per tick, reading $mode (incl. paint) | Setup tab | ${real} | ${base} | <= floor | $(verdict $((real <= base))) |"
    echo "| widgets painted per tick, reading $mode | Setup tab | ${paints[page-$mode]} | ${paints[floor-$mode]} | - | - |"
done
for name in opm shell; do
    label=$([[ $name == opm ]] && echo opm_demo || echo "opmshell + plug-in")
    real=$(m "${idle[$name]}")
    base=$(m "${idle[floor-$name]}")
    echo "| idle CPU, Setup tab shown, ${idle_seconds} s | $label | ${real} % | ${base} % | < 0.5 % | $(verdict "$(awk -v r="$real" 'BEGIN { print r < 0.5 }')") |"
done
for name in opm shell; do
    label=$([[ $name == opm ]] && echo opm_demo || echo "opmshell + plug-in")
    real=$(m "${memory[$name]}")
    echo "| peak resident (VmHWM) at first reading | $label | $(mib "$real") | $(mib "$floor_mem") | <= floor + 4 MiB | $(verdict $((real <= floor_mem + 4096))) |"
done
for name in opm shell; do
    label=$([[ $name == opm ]] && echo opm_demo || echo "opmshell + plug-in")
    real=$(m "${settled[$name]}")
    base=$(m "${settled[floor-$name]}")
    echo "| peak resident (VmHWM) after the idle run | $label | $(mib "$real") | $(mib "$base") | <= floor + 4 MiB | $(verdict $((real <= base + 4096))) |"
done
echo "| peak resident (VmHWM), plug-in loaded but not started | opmshell alone | $(mib "$(m "${shell_alone[*]}")") | $(mib "$floor_mem") | - | - |"
