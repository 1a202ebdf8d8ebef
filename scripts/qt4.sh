# Sourced by the test, demo and set-build scripts: finds Qt 4.8.4 and unpacks it inside a build
# folder (never into /opt or /usr). The tarballs lie in ../shared/qt4 beside the checkout.

qt4_shared_dir=${QT4_SHARED_DIR:-$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)/shared/qt4}

# qt4_unpack <build dir> <tarball> <folder in it> <dir override>: sets qt4_dir to the unpacked
# Qt (its bin/qmake inside), unpacking the tarball into <build dir>/qt4 unless it is there
# already; the override (QT4_DIR) names an unpacked Qt to use instead. Returns 1 with the reason
# in qt4_missing when there is none.
qt4_unpack() {
    local build tarball=$qt4_shared_dir/$2 folder=$3 override=$4
    build=$(mkdir -p "$1" && cd "$1" && pwd)
    qt4_dir='' qt4_missing=''
    if [[ -n $override ]]; then
        for qt4_dir in "$override" "$override/$folder"; do
            [[ -x $qt4_dir/bin/qmake ]] && return 0
        done
        qt4_dir='' qt4_missing="no bin/qmake in $override"
        return 1
    fi
    qt4_dir=$build/qt4/$folder
    [[ -x $qt4_dir/bin/qmake ]] && return 0
    if [[ ! -f $tarball ]]; then
        qt4_dir='' qt4_missing="no $tarball (and QT4_DIR is not set)"
        return 1
    fi
    echo "qt4: unpacking $tarball into $build/qt4"
    mkdir -p "$build/qt4"
    tar -xJf "$tarball" -C "$build/qt4"
    [[ -x $qt4_dir/bin/qmake ]] || { qt4_missing="$tarball holds no $folder/bin/qmake"; return 1; }
}
