#!/usr/bin/env bash
# Fails, naming the files, when a C++ file of the checkout is not as .clang-format says.
# Debian 12's clang-format 14 (scripts/setup.sh installs it). Fix with: clang-format -i FILE...
set -euo pipefail
cd "$(dirname "$0")/.."

unformatted=()
while IFS= read -r -d '' file; do
    clang-format --dry-run --Werror "$file" >/dev/null 2>&1 || unformatted+=("$file")
done < <(git ls-files -z -- '*.cpp' '*.h')

if ((${#unformatted[@]} > 0)); then
    echo "check-format: not formatted as .clang-format says (clang-format -i FILE):"
    printf '  %s\n' "${unformatted[@]}"
    exit 1
fi
echo "check-format: every C++ file formatted"
