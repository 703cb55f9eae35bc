#!/bin/bash
# Installs the package to a folder of its own, builds the example host against that alone, and lets it draw its panel.
#
#   tools/check_example.sh [build directory]
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

build_directory=$(cd "${1:-$root/build}" && pwd)
stage=$build_directory/stage
example=$build_directory/example
picture=$example/amplify.png

rm -rf "$stage" "$picture"
quietly cmake --install "$build_directory" --prefix "$stage"
quietly cmake -S "$root/examples/minimal_host" -B "$example" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_PREFIX_PATH="$stage"
ninja -C "$example" -j "$cores"
"$example/minimal_host" "$picture"
[[ $(head -c 8 "$picture" | od -An -tx1 | tr -d ' ') == 89504e470d0a1a0a ]] || fail "$picture is not a PNG file"
