#!/bin/bash
# clang-tidy over the sources, or over those named: tools/tidy.sh [files]
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

command -v clang-tidy-14 >/dev/null || fail "clang-tidy-14 is not installed (package clang-tidy-14)"

# A configuration of its own: clang cannot read the precompiled headers of g++.
configure release -B "$root/build-tidy" -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON -DQO_BUILD_TESTS=ON -DQO_BUILD_BENCHES=ON
# Nor does it know this option of g++.
sed -i 's/ -fno-gnu-unique//' "$root/build-tidy/compile_commands.json"
if (($#)); then
    files=$(realpath -- "$@")
else
    files=$(sources -name '*.cpp' -not -name '*_WIN.cpp' -not -path 'examples/*')
fi
cd "$root"
xargs -r -d '\n' -n 1 -P "$cores" clang-tidy-14 --quiet -p "$root/build-tidy" \
    --extra-arg=-Wno-unknown-warning-option <<<"$files" 2> >(grep -v 'warnings\? generated' >&2)
