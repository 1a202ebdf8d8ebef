#!/usr/bin/env bash
# Remakes the report pictures in docs/: runs the headless demo, keeps the report it exported
# (docs/example-report.html), a browser's rendering of it (docs/example-report.png) and the
# Result tab with the saved readings (docs/demo-result-tab.png).
# Chromium only draws the picture here; it is installed when missing and nothing else needs it.
#   BUILD_DIR   build folder (default: ./build of the checkout)
set -euo pipefail

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${BUILD_DIR:-$source_dir/build}
docs=$source_dir/docs

bash "$source_dir/scripts/setup.sh" chromium

env -u DISPLAY -u WAYLAND_DISPLAY BUILD_DIR="$build_dir" bash "$source_dir/scripts/demo.sh"

source "$(dirname "${BASH_SOURCE[0]}")/demoRoot.sh"
cp -f "$root/home/brova/brova-rslt/opm/route-7.html" "$docs/example-report.html"
cp -f "$build_dir/demo-screens/6-result-tab.png" "$docs/demo-result-tab.png"

# A profile of its own, so that no browser settings of the user take part.
rm -f "$docs/example-report.png"
profile=$(mktemp -d)
trap 'rm -rf "$profile"' EXIT
chromium --headless --no-sandbox --disable-gpu --hide-scrollbars --user-data-dir="$profile" \
    --window-size=900,700 --screenshot="$docs/example-report.png" \
    "file://$docs/example-report.html" 2>/dev/null || true
if [[ ! -s $docs/example-report.png ]]; then
    echo "docs-report: chromium wrote no picture" >&2
    exit 1
fi
echo "docs-report: wrote $docs/example-report.html, example-report.png, demo-result-tab.png"
