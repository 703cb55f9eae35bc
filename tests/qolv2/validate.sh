#!/bin/bash
# Checks the bundle's descriptions against LV2's own. The exit status of lv2_validate says nothing.
set -euo pipefail
output=$(lv2_validate "$1"/*.ttl 2>&1)
grep -q '^Found 0 errors' <<<"$output" && exit 0
printf '%s\n' "$output" >&2
exit 1
