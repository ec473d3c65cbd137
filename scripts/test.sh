#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test.
# usage: scripts/test.sh [ARGUMENTS OF CTEST...]
set -euo pipefail
cd "$(dirname "$0")/.."

# The page is tested in a browser; one of one's own does as well.
browser=()
command -v chromium chromium-browser google-chrome >/dev/null || browser=(chromium)
scripts/setup.sh "${browser[@]}"
scripts/build.sh dev
ctest --preset dev --parallel "$(nproc)" "$@"
