#!/usr/bin/env bash
# Installs what building, running and testing need on Debian 12, when it is missing.
# Packages given as arguments are installed too (scripts/memcheck.sh: valgrind).
set -euo pipefail

packages=(
    cmake make g++ pkg-config
    clang-format        # the format check (Debian 12: clang-format 14)
    qtbase5-dev qtbase5-dev-tools
    qttools5-dev-tools  # lupdate and lrelease: the translations (for the Qt 4 builds too)
    fonts-dejavu-core   # offscreen text needs a real font
    fonts-wqy-microhei  # Simplified Chinese glyphs (X11, offscreen, and the set build's font folder)
    psmisc              # killall, used to stop the power reader
    procps
    python3-html5lib    # the report test reads reports back as a browser would
    # Qt 4.8.4 from ../shared/qt4: its run-time libraries, and a headless X server for it
    xz-utils xvfb xauth
    libx11-6 libxext6 libxrender1 libsm6 libice6 libfontconfig1 libfreetype6 libpng16-16 zlib1g
    # the set build: 32-bit x86 with g++, checked with readelf, nm and objcopy
    g++-multilib binutils
    qemu-user           # runs it where the kernel runs no 32-bit program (qemu-i386)
    "$@"
)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
    echo "setup: installing ${missing[*]}"
    SUDO=""
    [ "$(id -u)" -eq 0 ] || SUDO="sudo"
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
