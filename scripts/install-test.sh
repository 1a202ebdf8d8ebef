#!/usr/bin/env bash
# Installs the set's bundle into a set-like root and starts it there:
#   1. unpacks the archive and checks every file against its MANIFEST (size, SHA-256), and that
#      the MANIFEST lists every file and names the commit;
#   2. copies it below <root>/usr/local as INSTALL says, beside what the set brings itself: a
#      stand-in reader at usr/local/brova/bin/lumenProbe that holds one known reading (the
#      simulated reader playing a scenario), and the vendor information file;
#   3. inside private mount, pid and IPC namespaces, where <root>/home and <root>/usr/local are
#      /home and /usr/local, the 32-bit Qt 4.8.4 host of the set build (tests/opminstallhost,
#      under qemu-i386 where the kernel runs no 32-bit program) loads the bundle's plug-in
#      through QPluginLoader and waits until the page shows that reading. The plug-in works on
#      its fixed paths and kills readers by name: the namespaces keep that from the machine's
#      own /home, /usr/local and other runs' readers.
# The set's toolkit and platform library come from the set build (scripts/set-build.sh).
#   install-test.sh <archive>
#   SET_BUILD_DIR   the set build (default: build-set)
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/setConfig.sh

archive=$(realpath "$1")
set_build=$(realpath "${SET_BUILD_DIR:-build-set}")
qt=$set_build/qt4/qt-4.8.4-i386
host=$set_build/tests/opminstallhost
reader=$set_build/tools/lumenProbe/lumenProbe
for file in "$host" "$reader" "$qt/lib/libQtGui.so.4" \
    "$set_build/platform/libbrovaplatform.so.1"; do
    if [[ ! -e $file ]]; then
        echo "install-test: FAIL no $file: run scripts/set-build.sh first"
        exit 1
    fi
done

work=$set_build/install-test
rm -rf "$work"
mkdir -p "$work/unpacked" "$work/root/home" "$work/root/usr/local/brova/bin" \
    "$work/root/usr/local/brova/lib"
tar -xzf "$archive" -C "$work/unpacked"
bundle=$(echo "$work"/unpacked/*)

# --- The manifest --------------------------------------------------------------------------
manifest_holds() {
    local size sum file bad=0
    if ! grep -Eq '^# opm .*, commit [0-9a-f]{40}$' MANIFEST; then
        echo "install-test: MANIFEST names no commit"
        bad=1
    fi
    while read -r size sum file; do
        [[ $size == \#* ]] && continue
        if [[ ! -f $file || $(stat -c %s "$file") != "$size" \
            || $(sha256sum <"$file" | cut -d' ' -f1) != "$sum" ]]; then
            echo "install-test: $file differs from MANIFEST"
            bad=1
        fi
    done <MANIFEST
    # Every file but MANIFEST itself is listed.
    diff <(find . -type f ! -name MANIFEST -printf '%P\n' | sort) \
        <(grep -v '^#' MANIFEST | cut -d' ' -f3 | sort) || bad=1
    return $bad
}
if (cd "$bundle" && manifest_holds); then
    echo "install-test: ok   $(grep -vc '^#' "$bundle/MANIFEST") files match MANIFEST" \
         "($(basename "$archive"))"
else
    echo "install-test: FAIL MANIFEST"
    exit 1
fi
for file in lib/brova/plugins/libopmplugin.so bin/opm INSTALL; do
    [[ -f $bundle/$file ]] || { echo "install-test: FAIL the bundle holds no $file"; exit 1; }
done

# --- The set-like root ---------------------------------------------------------------------
root=$work/root
cp -a "$bundle/lib" "$bundle/bin" "$root/usr/local/"
echo "BR-500 Common Platform V2.4.1 (build 2024-05-14)" >"$root/usr/local/brova/lib/vendor-info.txt"
printf '0 wavelenth=1310 unit=dBm value=-12.34 flag=1\n600000 end\n' >"$work/reading.txt"
printf '#!/bin/sh\nexec %q --scenario %q\n' "$reader" "$work/reading.txt" \
    >"$root/usr/local/brova/bin/lumenProbe"
chmod +x "$root/usr/local/brova/bin/lumenProbe"

set_runner "$work"
if [[ $i386_runner = none ]]; then
    echo "install-test: skipped the start: this machine runs no 32-bit program and has no qemu-i386"
    exit 0
fi
if ! unshare --mount --pid --ipc --fork --mount-proc true 2>/dev/null; then
    echo "install-test: skipped the start: no private mount and pid namespaces here" \
         "(unshare needs root)"
    exit 0
fi

# Inside the namespaces: the root's folders over /home and /usr/local, its folder as the
# working folder (the record's key), the host as its own QWS server.
display=$(next_display 60)
inside='mount --bind "$ROOT/home" /home && mount --bind "$ROOT/usr/local" /usr/local &&
        cd "$ROOT" && exec timeout "$LIMIT" "$@" -qws'
limit=60
[[ $i386_runner = emulated ]] && limit=120
if env ROOT="$root" LIMIT=$limit \
    LD_LIBRARY_PATH="$qt/lib:$set_build/platform" QT_QWS_FONTDIR="$qt/lib/fonts" \
    QWS_DISPLAY="VNC:size=800x480:depth=32:$display" \
    unshare --mount --pid --ipc --fork --mount-proc bash -c "$inside" install-host \
    "${i386_run[@]}" "$host" /usr/local/lib/brova/plugins/libopmplugin.so "-12.340 dBm" 30000 \
    >"$work/host.log" 2>&1; then
    grep '^opminstallhost:' "$work/host.log"
    echo "install-test: ok   the bundle's plug-in shows the reader's reading ($i386_runner)"
else
    tail -n 30 "$work/host.log"
    echo "install-test: FAIL the bundle's plug-in did not show the reading"
    exit 1
fi
