#!/usr/bin/env bash
# Builds Zonara and runs every test, first in the dev preset, then under
# AddressSanitizer and UndefinedBehaviorSanitizer. Build directories are kept
# in build/ and reused by later runs.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/deps.sh --test

status=0
for preset in dev asan; do
    echo "== $preset =="
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    ctest --preset "$preset" || status=1
done
exit $status
