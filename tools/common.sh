# shellcheck shell=bash
# Sourced by the commands at the root and in tools/: `root` is the repository, `cores` the number of processors; scripts
# stop at the first error.
set -euo pipefail
export LC_ALL=C.UTF-8 GTEST_COLOR=no

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cores=$(nproc)

say() { printf '== %s\n' "$*"; }
fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# Runs a command whose output matters only when it fails.
quietly() {
    local log
    log=$(mktemp)
    if "$@" >"$log" 2>&1; then
        rm -f "$log"
        return 0
    fi
    tail -n 200 "$log" >&2
    rm -f "$log"
    return 1
}

# configure <preset> [cmake options]
configure() {
    local preset=$1
    shift
    if command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
        # Without these a precompiled header makes every compilation a cache miss.
        export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    fi
    say "configure ($preset)"
    quietly cmake -S "$root" --preset "$preset" "$@" || fail "configuring failed"
}

# build <directory> [targets]
build() {
    say "build ($(basename "$1"))"
    ninja -C "$1" -j "$cores" "${@:2}" || fail "the build failed"
}

# The project's own sources that match, one a line: sources <find expression>
sources() {
    (cd "$root" && find platform components module controls ui host plugins workbench tests bench fuzz examples \
        -type f "$@" 2>/dev/null || true) | sort
}
