#!/bin/bash
# Formats the sources; with --check only tells which ones are not formatted, as an error.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# Another version lays some lines out differently.
formatter=
for candidate in clang-format-14 clang-format; do
    if command -v "$candidate" >/dev/null && "$candidate" --version | grep -q 'version 14\.'; then
        formatter=$candidate
        break
    fi
done
if [[ -z $formatter ]]; then
    say "clang-format 14 is not installed: skipped"
    exit 0
fi

mode=(-i)
case ${1:-} in
    '') ;;
    --check) mode=(--dry-run -Werror) ;;
    *)
        echo "usage: tools/format.sh [--check]" >&2
        exit 2
        ;;
esac
cd "$root"
sources \( -name '*.cpp' -o -name '*.h' \) | xargs -r -d '\n' -n 20 -P "$cores" "$formatter" --style=file "${mode[@]}"
