#!/usr/bin/env bash
# Installs what building and testing need, from the system's packages; quick when all is there.
# usage: scripts/setup.sh [MORE PACKAGES...]
set -euo pipefail

packages=(
    g++ cmake ninja-build ccache python3                            # tools
    libboost-dev libfmt-dev liblog4cplus-dev rapidjson-dev          # the library and its host
    libcli11-dev                                                    # the program
    libgtest-dev libgmock-dev librapidcheck-dev libbenchmark-dev    # tests and benchmarks
    "$@"
)

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
    [[ $status == installed ]] || missing+=("$package")
done
((${#missing[@]})) || exit 0

echo "setup: installing ${missing[*]}"
as_root=()
((EUID == 0)) || as_root=(sudo)
apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300)
"${apt[@]}" update
"${apt[@]}" install --yes --no-install-recommends "${missing[@]}" >/dev/null
