# Sourced by the set-build and release scripts: how the product is configured as the set runs
# it: 32-bit x86 (-m32), Qt 4.8.4 for Embedded Linux, C++98 for the product, Release, the
# plug-in and libraries linked with -Wl,--no-undefined.

# set_configure <build dir> <Qt dir> <extra compiler flags> <cmake arguments...>
set_configure() {
    local dir=$1 qt=$2 flags="-m32 $3"
    shift 3
    # QtGui's own dependencies (QtNetwork, for the VNC driver) are found without an rpath too.
    local launcher=() link="-m32 -Wl,-rpath-link,$qt/lib"
    if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
    cmake -S . -B "$dir" -DOPM_QT=4 "-DQT_QMAKE_EXECUTABLE=$qt/bin/qmake" \
        -DCMAKE_BUILD_TYPE=Release "${launcher[@]}" \
        "-DCMAKE_CXX_FLAGS=$flags" "-DCMAKE_EXE_LINKER_FLAGS=$link" \
        "-DCMAKE_SHARED_LINKER_FLAGS=$link -Wl,--no-undefined" \
        "-DCMAKE_MODULE_LINKER_FLAGS=$link -Wl,--no-undefined" "$@" >/dev/null
}

# How this machine runs the set's 32-bit programs: set_runner sets i386_runner to "native"
# (the kernel runs them), "emulated" (under qemu-i386, Debian's qemu-user) or "none", and
# i386_run to the command prefix that runs one (empty when native). <scratch> is a folder for
# the probe.
set_runner() {
    local probe=$1/m32-probe
    printf 'int main(void) { return 0; }\n' >"$probe.c"
    i386_run=()
    i386_runner=none
    gcc -m32 "$probe.c" -o "$probe" 2>/dev/null || return 0
    # SET_EMULATE=1 takes qemu-i386 even where the kernel would run them: the CI machines' way.
    if [[ ${SET_EMULATE:-0} != 1 ]] && "$probe" 2>/dev/null; then
        i386_runner=native
    elif command -v qemu-i386 >/dev/null && qemu-i386 "$probe" 2>/dev/null; then
        i386_runner=emulated
        i386_run=(qemu-i386)
    fi
}

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
