#!/bin/sh
# checkTs.sh SCRATCH LUPDATE "OPTIONS" TS...: runs lupdate over the code into scratch copies of
# the .ts files; fails when that changes any of them, or when one has a message left unfinished
# or obsolete. Each failure is named.
scratch=$1 lupdate=$2 options=$3
shift 3
count=$#
rm -rf "$scratch" && mkdir -p "$scratch" || exit 1
status=0
for ts in "$@"; do
    copy=$scratch/$(basename "$ts")
    cp "$ts" "$copy"
    # shellcheck disable=SC2086 # the options are a CMake list: one word each
    IFS=';'; set -- $options; unset IFS
    "$lupdate" "$@" -ts "$copy" >/dev/null || status=1
    if ! cmp -s "$ts" "$copy"; then
        echo "checkTs: $(basename "$ts") is not up to date with the code (cmake --build <dir>" \
             "--target opm_lupdate):"
        diff -u "$ts" "$copy" | head -40
        status=1
    fi
    for kind in unfinished obsolete vanished; do
        count=$(grep -c "type=\"$kind\"" "$ts")
        if [ "$count" -gt 0 ]; then
            echo "checkTs: $(basename "$ts") has $count $kind message(s)"
            status=1
        fi
    done
done
[ $status -eq 0 ] && echo "checkTs: $count .ts files current and finished"
exit $status
