#!/usr/bin/env bash
# How soon after each minute boundary the tray's new line reaches the bus:
# runs the tray program on a private session bus (offscreen, no panel) with
# three pinned cities for some minutes (default 5) and takes the bus
# monitor's timestamp of every LineChanged signal. The line sent at start is
# not on a boundary and is not counted.
#
#   tools/minute-landing.sh [MINUTES]
#
# Environment: ZONARA_BINARY (default build/release/bin/zonara).
# Needs: dbus (dbus-daemon, dbus-monitor), python3.
set -euo pipefail
cd "$(dirname "$0")/.."
minutes=${1:-5}
binary=$(realpath "${ZONARA_BINARY:-build/release/bin/zonara}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config TZ=UTC
for zone in Europe/Stockholm Asia/Tokyo America/New_York; do
    "$binary" add "$zone" --pin >/dev/null
done

# A private bus that lives as long as this script's inner shell.
# shellcheck disable=SC2016
dbus-run-session -- bash -c '
    dbus-monitor --profile "type=signal,member=LineChanged" >"$0/monitor" 2>/dev/null &
    monitor=$!
    date +%s.%N >"$0/start"
    QT_QPA_PLATFORM=offscreen "$1" >"$0/zonara.log" 2>&1 &
    app=$!
    sleep $(( $2 * 60 + 5 ))
    kill "$app" "$monitor"
    wait 2>/dev/null || true
' "$work" "$binary" "$minutes"

python3 - "$work/monitor" "$work/start" <<'PY'
import statistics, sys
start = float(open(sys.argv[2]).read())
# dbus-monitor --profile: "sig <seconds.micros> <serial> <sender> ..."
stamps = [float(line.split()[1]) for line in open(sys.argv[1]) if line.startswith("sig")]
late = sorted((stamp % 60.0) * 1000.0 for stamp in stamps if stamp > start + 5)
if not late:
    sys.exit("minute-landing: no LineChanged seen after the first")
print(f"boundaries: {len(late)}")
print(f"after the boundary: median {statistics.median(late):.1f} ms, "
      f"max {max(late):.1f} ms, min {min(late):.1f} ms")
print("each (ms): " + " ".join(f"{ms:.1f}" for ms in late))
PY
