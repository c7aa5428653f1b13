#!/usr/bin/env bash
# Measures how soon `zonara watch` prints after each second boundary: runs it
# in the seconds format for a while (default 20 s) and reports how far past
# the boundary each line arrived.
#
#   tools/watch-latency.sh [SECONDS]      uses build/release/bin/zonara
set -euo pipefail
cd "$(dirname "$0")/.."
duration=${1:-20}
binary=$(realpath "${ZONARA_BINARY:-build/release/bin/zonara}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config
"$binary" add Asia/Tokyo --pin >/dev/null

python3 - "$binary" "$duration" <<'PY'
import statistics, subprocess, sys, time
binary, duration = sys.argv[1], float(sys.argv[2])
process = subprocess.Popen([binary, "watch", "--json", "--format", "labelTime24Seconds"],
                           stdout=subprocess.PIPE, text=True)
late = []
end = time.time() + duration
first = True
for line in process.stdout:
    now = time.time()
    if not first:  # the first line is printed at start, not on a boundary
        late.append((now % 1.0) * 1000.0)
    first = False
    if now > end:
        break
process.kill()
late.sort()
print(f"lines: {len(late)}")
print(f"after the boundary: median {statistics.median(late):.1f} ms, "
      f"max {max(late):.1f} ms, min {min(late):.1f} ms")
PY
