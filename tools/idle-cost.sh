#!/usr/bin/env bash
# What an idle Zonara costs, side by side with a peer world clock (gworldclock),
# with a real StatusNotifierItem host: vala-panel on Xvfb and a private
# session bus, started by sni-panel.sh. Phases of SECONDS each (default 300):
#
#   baseline      the host, bus and X server alone
#   zonara-3      Zonara with three pinned cities
#   zonara-300    Zonara with 300 cities, three of them pinned
#   peer          gworldclock showing the same three cities
#
# For each: the program's own wake-ups (voluntary context switches of all its
# threads: each is a sleep ended by a wake-up), its CPU time (schedstat, ns),
# CPU per minute tick, its PSS, and the wake-ups it causes in the host, the
# bus daemon and the X server (theirs during the phase minus the baseline).
#
#   tools/idle-cost.sh [SECONDS]
#
# Environment:
#   ZONARA_BINARY     default build/release/bin/zonara (build/dev/bin/zonara if that is missing)
#   ZONARA_SNI_PANEL  the host script (default ../shared/tools/sni-panel.sh beside the repo)
#   IDLE_COST_PEER    the peer's command (default gworldclock)
# Needs: xvfb dbus vala-panel vala-sntray-plugin gworldclock (Debian 12).
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$repo"

duration=${1:-300}
settle=10
binary=${ZONARA_BINARY:-build/release/bin/zonara}
[ -x "$binary" ] || binary=build/dev/bin/zonara
[ -x "$binary" ] || { echo "idle-cost: build zonara first" >&2; exit 2; }
binary=$(realpath "$binary")
panel=${ZONARA_SNI_PANEL:-$repo/../shared/tools/sni-panel.sh}
[ -x "$panel" ] || { echo "idle-cost: no panel host at $panel" >&2; exit 2; }
peer=${IDLE_COST_PEER:-gworldclock}
command -v "${peer%% *}" >/dev/null || { echo "idle-cost: $peer is not installed" >&2; exit 2; }

work=$(mktemp -d)
export SNI_PANEL_STATE=$work/panel
cleanup() {
    [ -n "${app:-}" ] && kill "$app" 2>/dev/null || true
    "$panel" stop >/dev/null 2>&1 || true
    rm -rf "$work"
}
trap cleanup EXIT
eval "$("$panel" start)"
role_pid() { awk -v r="$1" '$1 == r { print $2 }' "$SNI_PANEL_STATE/pids"; }
host=$(role_pid panel) bus=$(role_pid dbus) xserver=$(role_pid xvfb)

# "tid voluntary_switches cpu_ns" for every thread of the given pids
threads() {
    local pid task v c
    for pid in "$@"; do
        for task in /proc/"$pid"/task/*; do
            v=$(awk '/^voluntary_ctxt_switches/ { print $2 }' "$task/status" 2>/dev/null) || continue
            c=$(awk '{ print $1 }' "$task/schedstat" 2>/dev/null) || continue
            echo "${task##*/} ${v:-0} ${c:-0}"
        done
    done
}
# Wake-ups and CPU between two samples: per thread, so that a thread that
# ends in between takes none of the others' counts with it (its own last
# ones are lost: a slight undercount).
delta() {
    awk 'NR == FNR { w[$1] = $2; c[$1] = $3; next }
         { wakes += $2 - w[$1]; cpu += $3 - c[$1] } END { printf "%d %d", wakes, cpu }' "$1" "$2"
}
pss_kib() { awk '/^Pss:/ { print $2 }' /proc/"$1"/smaps_rollup 2>/dev/null || echo 0; }

# One phase: prints "name own_wakes own_cpu_ns others_wakes ticks pss_kib".
measure() {
    local name=$1 pid=${2:-} t0 t1 own others pss=0
    sleep "$settle"
    t0=$(date +%s)
    threads "$host" "$bus" "$xserver" >"$work/others0"
    threads $pid >"$work/own0"
    sleep "$duration"
    threads "$host" "$bus" "$xserver" >"$work/others1"
    threads $pid >"$work/own1"
    [ -n "$pid" ] && pss=$(pss_kib "$pid")
    t1=$(date +%s)
    own=$(delta "$work/own0" "$work/own1")
    others=$(delta "$work/others0" "$work/others1")
    echo "$name $own ${others% *} $(( t1 / 60 - t0 / 60 )) $pss"
}

zones=(Europe/Stockholm Asia/Tokyo America/New_York)
configure_zonara() {
    export XDG_CONFIG_HOME=$work/config-$1
    local z
    for z in "${zones[@]}"; do "$binary" add "$z" --pin >/dev/null; done
    if [ "$1" -gt 3 ]; then
        awk '$1 == "Z" { print $2 }' /usr/share/zoneinfo/tzdata.zi | grep -v -x -e "${zones[0]}" \
            -e "${zones[1]}" -e "${zones[2]}" | head -n $(($1 - 3)) | while read -r z; do
            "$binary" add "$z" >/dev/null
        done
    fi
}
run_zonara() {
    configure_zonara "$1"
    "$binary" >"$work/zonara-$1.log" 2>&1 &
    app=$!
    measure "zonara-$1" "$app"
    kill "$app"; wait "$app" 2>/dev/null || true; app=
}
run_peer() {
    export HOME=$work/home
    mkdir -p "$HOME"
    printf '%s\n' "${zones[@]}" >"$HOME/.tzlist"
    $peer >"$work/peer.log" 2>&1 &
    app=$!
    measure peer "$app"
    kill "$app"; wait "$app" 2>/dev/null || true; app=
}

# Each phase's line as soon as it is measured; the baseline is subtracted
# from the others' wake-ups.
report() {
    awk -v d="$duration" -v base="$1" '{
        ticks = $5 > 0 ? $5 : 1
        printf "%-11s own wake-ups/min %6.2f  own CPU ms/min %7.2f  CPU ms/tick %7.2f  " \
               "caused wake-ups/min %6.2f  PSS MiB %5.1f\n",
               $1, $2 * 60 / d, $3 / 1e6 * 60 / d, $3 / 1e6 / ticks, ($4 - base) * 60 / d, $6 / 1024
    }'
}

echo "idle-cost: $duration s per phase, host vala-panel on $DISPLAY" >&2
baseline=$(measure baseline)
base=$(echo "$baseline" | awk '{ print $4 }')
echo "baseline    host, bus and X server alone: $(awk -v w="$base" -v d="$duration" \
    'BEGIN { printf "%.2f", w * 60 / d }') wake-ups/min"
for phase in "run_zonara 3" "run_zonara 300" run_peer; do
    $phase >"$work/phase"
    report "$base" <"$work/phase"
done
