#!/usr/bin/env bash
# Installs what building, running and testing need on Debian 12, when it is missing.
set -euo pipefail

packages=(
    cmake make g++ pkg-config
    qtbase5-dev qtbase5-dev-tools
    fonts-dejavu-core   # offscreen text needs a real font
    psmisc              # killall, used to stop the power reader
    procps
    python3-html5lib    # the report test reads reports back as a browser would
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
