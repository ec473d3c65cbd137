#!/usr/bin/env bash
# Installs what is missing, builds the program and charts the shipped example.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh release roofline
roofline=build/release/cli/roofline
result=examples/two_compilers/gcc.json

mkdir -p demo-out
"$roofline" chart "$result"
"$roofline" chart "$result" --json demo-out/chart.json --svg demo-out/chart.svg
echo
echo "The chart document is demo-out/chart.json, the picture demo-out/chart.svg; more: $roofline --help"
