#!/usr/bin/env bash
# Measures how often an idle Zonara wakes up: starts it on its own X display
# and session bus, lets it settle, then counts the
# context switches of all its threads over a stretch of time (default 180 s).
#
#   tools/idle-cost.sh [SECONDS]        uses build/release/bin/zonara
#   ZONARA_BINARY=... tools/idle-cost.sh
set -euo pipefail
cd "$(dirname "$0")/.."

duration=${1:-180}
binary=${ZONARA_BINARY:-build/release/bin/zonara}
[ -x "$binary" ] || { echo "no $binary: build the release preset first" >&2; exit 2; }
binary=$(realpath "$binary")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config

cat >"$work/measure.sh" <<'INNER'
set -euo pipefail
binary=$1 duration=$2
"$binary" >/dev/null 2>&1 &
pid=$!
sleep 5 # settle: start-up work is not idle cost
switches() {
    local total=0 n
    for status in /proc/"$pid"/task/*/status; do
        n=$(awk '/ctxt_switches/ { s += $2 } END { print s }' "$status" 2>/dev/null || echo 0)
        total=$((total + n))
    done
    echo "$total"
}
threads=$(ls /proc/"$pid"/task | wc -l)
before=$(switches)
sleep "$duration"
after=$(switches)
kill "$pid"
wakes=$((after - before))
echo "threads: $threads"
echo "context switches in ${duration} s: $wakes"
awk -v w="$wakes" -v d="$duration" 'BEGIN { printf "wake-ups per minute: %.2f\n", w * 60 / d }'
INNER

xvfb-run -a -s "-screen 0 1280x800x24" dbus-run-session -- bash "$work/measure.sh" "$binary" "$duration"
