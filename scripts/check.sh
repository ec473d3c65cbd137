#!/usr/bin/env bash
# The whole loop before a change is handed on: format, layout, build, test.
# usage: scripts/check.sh [--fix]     --fix formats the sources instead of complaining
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh clang-format
mode=(--dry-run --Werror)
[[ ${1:-} == --fix ]] && mode=(-i)
echo "== format"
git ls-files --cached --others --exclude-standard -z -- '*.h' '*.cpp' | xargs -0 clang-format "${mode[@]}"
echo "== layout"
python3 scripts/check_layout.py
scripts/test.sh
