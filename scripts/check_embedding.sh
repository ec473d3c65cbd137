#!/usr/bin/env bash
# Installs a build into a prefix of its own, builds examples/embed against it as an embedder would, and holds the
# example's chart document against the program's.
# usage: scripts/check_embedding.sh BUILD_FOLDER [CXX]
set -euo pipefail
cd "$(dirname "$0")/.."

build=$1
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
result=examples/quick/result.json

cmake --install "$build" --prefix "$prefix" >/dev/null
cmake -G Ninja -S examples/embed -B "$prefix/embed" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Debug \
    ${2:+-DCMAKE_CXX_COMPILER="$2"} >/dev/null
cmake --build "$prefix/embed"

"$prefix/embed/embed" "$result" >"$prefix/embedded"
{
    "$prefix/bin/roofline" options "$result" && echo
    "$prefix/bin/roofline" chart "$result" --json - && echo
} >"$prefix/program"
if [[ -x $prefix/embed/own_host ]]; then
    [[ $("$prefix/embed/own_host") == *'"groups"'*'"physicalCoreCount":0'* ]]
fi
diff "$prefix/embedded" "$prefix/program"
echo "embedding: the example and the program agree, $(wc -c <"$prefix/program") bytes"
