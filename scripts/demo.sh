#!/usr/bin/env bash
# Installs what is missing, builds the program, charts the shipped example, compares its two compilers, makes a report.
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
"$roofline" compare "$result" examples/two_compilers/clang.json --table --svg demo-out/comparison.svg
echo
echo "The chart document is demo-out/chart.json, the pictures demo-out/chart.svg and demo-out/comparison.svg;"
echo "more: $roofline --help"
if "$roofline" report "$result" --compare examples/two_compilers/clang.json --force -o demo-out/report.html; then
    echo "Open $PWD/demo-out/report.html in a browser: the comparison as a page that needs no network."
fi
