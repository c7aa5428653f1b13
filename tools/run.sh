#!/usr/bin/env bash
# Builds Zonara (release preset) and starts it with any arguments given.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/deps.sh
cmake --preset release >/dev/null
cmake --build --preset release
exec build/release/bin/zonara "$@"
