#!/usr/bin/env bash
# Configures and builds a preset, telling only what went wrong.
# usage: scripts/build.sh PRESET [TARGETS...]
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
echo "== build: $preset"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
cmake --preset "$preset" >"$log" 2>&1 || { cat "$log"; exit 1; }
# A terminal shows ninja's own line of progress; elsewhere it would be thousands of lines.
if [[ -t 1 ]]; then
    exec cmake --build --preset "$preset" ${1:+--target "$@"}
fi
cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1 || { cat "$log"; exit 1; }
