#!/usr/bin/env bash
# Builds Zonara and runs every test, first in the dev preset, then under
# AddressSanitizer and UndefinedBehaviorSanitizer, then runs each fuzz target
# for a bounded time (ZONARA_FUZZ_SECONDS, 30 by default). Build directories
# are kept in build/ and reused by later runs.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/deps.sh --test

status=0
for preset in dev asan fuzz; do
    echo "== $preset =="
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    ctest --preset "$preset" || status=1
done

echo "== fuzzing: executions per second, total executions =="
for stats in build/fuzz/bin/stats/*.txt; do
    name=$(basename "$stats" .txt)
    rate=$(awk '/average_exec_per_sec/ {print $2}' "$stats")
    total=$(awk '/number_of_executed_units/ {print $2}' "$stats")
    echo "$name: $rate/s, $total in all"
done
exit $status
