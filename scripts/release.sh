#!/usr/bin/env bash
# Makes the set's bundle from the set build (32-bit x86, Qt 4.8.4 for Embedded Linux):
# opm-<version>-i386-qt4.8.4.tar.gz with the plug-in, the stand-alone program, the
# translations (opm_<code>.qm), a MANIFEST (size and SHA-256 of every file, and the
# commit) and an INSTALL note. Only the product's targets are built, in build-release/.
# Two runs on one commit give the same bytes, from any folder and at any time
# (docs/release.md): the commit's time stands for every time, no build path or owner gets in.
#   RELEASE_BUILD_DIR  build folder (default: build-release)
#   QT4_I386_DIR       an unpacked Qt 4.8.4 for i386 to use instead of the tarball
# Prints the archive's path and its SHA-256 last.
set -euo pipefail
cd "$(dirname "$0")/.."
source_dir=$(pwd)

bash scripts/setup.sh >&2
source scripts/qt4.sh
source scripts/setConfig.sh

build_dir=${RELEASE_BUILD_DIR:-build-release}
mkdir -p "$build_dir"
build_dir=$(cd "$build_dir" && pwd)

commit=$(git rev-parse HEAD)
version=$(git describe --tags --always --dirty)
export SOURCE_DATE_EPOCH=$(git log -1 --format=%ct "$commit")
export TZ=UTC LC_ALL=C
umask 022
name=opm-$version-i386-qt4.8.4

if ! qt4_unpack "$build_dir" qt-4.8.4-i386-embedded.tar.xz qt-4.8.4-i386 "${QT4_I386_DIR:-}" >&2; then
    echo "release: no Qt 4.8.4 for i386: $qt4_missing" >&2
    exit 1
fi

# No build path reaches the files: source and build folders mapped away in __FILE__ and
# debug data, no rpath (the set's loader finds its own Qt). ccache may serve the objects but
# must not rewrite the paths the compiler sees.
export CCACHE_BASEDIR=
set_configure "$build_dir" "$qt4_dir" \
    "-ffile-prefix-map=$source_dir/= -ffile-prefix-map=$build_dir/=build/ -Wdate-time" \
    -DBUILD_TESTING=OFF -DCMAKE_SKIP_RPATH=ON -DCMAKE_INSTALL_LIBDIR=lib -DCMAKE_INSTALL_BINDIR=bin

# The product's targets only, and the translations.
cmake --build "$build_dir" -j "$(nproc)" --target opmplugin opm opm_translations >&2

stage=$build_dir/stage
rm -rf "$stage"
mkdir -p "$stage/$name"
install_component() {
    cmake --install "$build_dir" --prefix "$stage/$name" --component "$1" --strip >/dev/null
}
install_component product
install_component translations

# INSTALL: where each file goes on the set, and what the set brings itself.
{
    cat <<EOF
opm $version for the set: 32-bit x86, Qt 4.8.4 for Embedded Linux
Built from commit $commit.

Files (below the set's /usr/local):
  lib/brova/plugins/libopmplugin.so  the plug-in the application shell loads
                                     -> /usr/local/lib/brova/plugins/
  bin/opm                            the stand-alone program (the same page without the shell)
                                     -> /usr/local/bin/
EOF
    (cd "$stage/$name" && find lib/brova/plugins -name '*.qm' | sort) | while read -r file; do
        printf '  %-34s translation of the page -> /usr/local/lib/brova/plugins/\n' "$file"
    done
    cat <<'EOF'

The set provides, and this bundle does not hold:
  - its Qt 4.8.4 for Embedded Linux (libQtCore.so.4, libQtGui.so.4) on the loader's path;
  - its widget toolkit library, libbrovaplatform.so.1, on the loader's path;
  - the power reader, /usr/local/brova/bin/lumenProbe, which the plug-in starts and kills
    ("killall -9 lumenProbe");
  - /usr/local/brova/lib/vendor-info.txt (the software version in reports);
  - a writable /home: the setup is kept in /home/Setting/opmSetup.conf, reports go to
    /home/brova/brova-rslt/opm.

Check the files against MANIFEST (size, SHA-256), in this folder:
  awk '!/^#/ { print $2 "  " $3 }' MANIFEST | sha256sum -c
EOF
} >"$stage/$name/INSTALL"

# MANIFEST: every other file with its size and SHA-256, by path.
(
    cd "$stage/$name"
    echo "# opm $version, commit $commit"
    echo "# size sha256 path"
    find . -type f -printf '%P\n' | sort | while read -r file; do
        printf '%s %s %s\n' "$(stat -c %s "$file")" "$(sha256sum <"$file" | cut -d' ' -f1)" "$file"
    done
) >"$stage/MANIFEST"
mv "$stage/MANIFEST" "$stage/$name/MANIFEST"

# Sorted members, one owner, the commit's time, modes without the umask's say, no name or
# time in the gzip header.
archive=$build_dir/$name.tar.gz
tar --sort=name --format=gnu --owner=0 --group=0 --numeric-owner \
    --mtime="@$SOURCE_DATE_EPOCH" --mode='u+rwX,go+rX,go-w' \
    -C "$stage" -cf - "$name" | gzip -9n >"$archive.new"
mv "$archive.new" "$archive"
echo "release: $archive"
echo "release: sha256 $(sha256sum "$archive" | cut -d' ' -f1)"
