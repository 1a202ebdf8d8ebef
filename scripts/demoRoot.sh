# Sourced by the demo, docs and bench scripts once build_dir is set: the build's demo device
# root, its reader, and how to prepare them.
root=$(sed -n 's/^OPM_DEMO_ROOT:PATH=//p' "$build_dir/CMakeCache.txt")
root=${root:-$build_dir/demo-root}
reader=$root/usr/local/brova/bin/lumenProbe

# By its path: only the demo root's reader, never one of another run or of the tests.
kill_reader() { killall -q -9 "$reader" 2>/dev/null || true; }

# The root's folders, its reader (a fresh copy, none running), its identity files, and a runtime
# folder for Qt when the session has none.
prepare_root() {
    mkdir -p "$root/home" "$root/usr/local/brova/bin" "$root/usr/local/brova/lib" "$root/etc/brova"
    if [[ -z ${XDG_RUNTIME_DIR:-} ]]; then
        export XDG_RUNTIME_DIR=$build_dir/demo-runtime
        mkdir -p -m 700 "$XDG_RUNTIME_DIR"
    fi
    kill_reader
    # A copy, not a link: the page kills its reader by this path, which must name the demo's
    # reader alone and not the build's program that tests run too.
    cp -f "$build_dir/tools/lumenProbe/lumenProbe" "$reader.new"
    mv -f "$reader.new" "$reader"
    echo "BR-500 Common Platform V2.4.1 (build 2024-05-14)" >"$root/usr/local/brova/lib/vendor-info.txt"
    printf 'mac=00:1a:2b:3c:4d:5e\nsn=BR-0001234\n' >"$root/etc/brova/e2prom.txt"
}

# Stops, when the script ends, the background helpers it listed in helpers and the reader.
stop_demo_on_exit() {
    helpers=()
    trap 'for pid in "${helpers[@]}"; do kill "$pid" 2>/dev/null || true; done; kill_reader' EXIT
}
