#!/usr/bin/env bash
# Runs one fuzz target for a bounded time (ZONARA_FUZZ_SECONDS, 30 by
# default), starting from its seed corpus. What it finds on the way is kept in
# the build directory and reused by the next run; its final statistics go to
# stats/<target>.txt there.
set -euo pipefail
binary=$1
seeds=$2
seconds=${ZONARA_FUZZ_SECONDS:-30}
build=$(dirname "$binary")
name=$(basename "$binary")
mkdir -p "$build/corpus/$name" "$build/stats" "$build/crashes"
"$binary" "$build/corpus/$name" "$seeds" \
    -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=16384 \
    -print_final_stats=1 -artifact_prefix="$build/crashes/$name-" \
    2> >(tee "$build/stats/$name.log" >&2)
status=$?
grep '^stat::' "$build/stats/$name.log" >"$build/stats/$name.txt" || true
exit $status
