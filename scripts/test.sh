#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test.
# usage: scripts/test.sh [ARGUMENTS OF CTEST...]
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh dev
ctest --preset dev --parallel "$(nproc)" "$@"
