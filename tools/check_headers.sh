#!/bin/bash
# Compiles every public header on its own, with the include path of its layer and nothing else. Only what has changed
# since the last time is compiled again.
#
#   tools/check_headers.sh [build directory]
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

ninja -C "${1:-$root/build}" -j "$cores" -k 0 all_verify_interface_header_sets
