#!/bin/bash
# Installs the package to a folder of its own, builds the example hosts against that alone, and lets them draw, sound and
# grow. The one with a window runs on a virtual screen, where there is one (packages xvfb, xdotool, imagemagick).
#
#   tools/check_example.sh [build directory]
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

build_directory=$(cd "${1:-$root/build}" && pwd)
stage=$build_directory/stage

build_example() { # <name>
    quietly cmake -S "$root/examples/$1" -B "$build_directory/examples/$1" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_PREFIX_PATH="$stage"
    ninja -C "$build_directory/examples/$1" -j "$cores"
}

rm -rf "$stage"
quietly cmake --install "$build_directory" --prefix "$stage"

build_example minimal_host
picture=$build_directory/examples/minimal_host/amplify.png
rm -f "$picture"
"$build_directory/examples/minimal_host/minimal_host" "$picture"
[[ $(head -c 8 "$picture" | od -An -tx1 | tr -d ' ') == 89504e470d0a1a0a ]] || fail "$picture is not a PNG file"

build_example window_host
if command -v Xvfb >/dev/null && command -v xdotool >/dev/null && command -v import >/dev/null; then
    python3 "$root/tests/examples/window_host.py" "$build_directory/examples/window_host/window_host"
else
    say "window_host was built and not run: there is no virtual screen"
fi
