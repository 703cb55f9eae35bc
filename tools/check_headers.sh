#!/bin/bash
# Compiles public headers on their own, with the include path of their layer and nothing else. Only what has changed since
# the last time is compiled again.
#
#   tools/check_headers.sh [--quick] [build directory]
#
#   --quick   only headers that no source includes before all others: those that one does are complete but for what a
#             precompiled header may give them
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

targets=(all_verify_interface_header_sets)
quick=false
if [[ ${1:-} == --quick ]]; then
    quick=true
    shift
fi
build_directory=${1:-$root/build}

first_includes() {
    git -C "$root" ls-files -z -- '*.cpp' | (cd "$root" && xargs -0 awk '
        FNR == 1 { found = 0 }
        !found && /^#include/ { found = 1; if (split($0, parts, "\"") == 3) print parts[2] }')
}
if $quick; then
    mapfile -t targets < <(ninja -C "$build_directory" -t targets all |
        sed -n 's/^\(.*_verify_interface_header_sets\/\(.*\)\.cxx\.o\): .*/\2 \1/p' |
        awk 'NR == FNR { known[$1] = 1; next } !($1 in known) { print $2 }' <(first_includes) -)
    say "${#targets[@]} headers that no source includes first"
    ((${#targets[@]})) || exit 0
fi
ninja -C "$build_directory" -j "$cores" -k 0 "${targets[@]}"
