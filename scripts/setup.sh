#!/usr/bin/env bash
# Installs what building and testing need, from the system's packages and npm's; quick when all is there.
# usage: scripts/setup.sh [MORE PACKAGES...]
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
    g++ cmake ninja-build ccache python3                            # tools
    libboost-dev libfmt-dev liblog4cplus-dev rapidjson-dev          # the library and its host
    libcli11-dev zlib1g-dev                                         # the program
    libgtest-dev libgmock-dev librapidcheck-dev libbenchmark-dev    # tests and benchmarks
    "$@"
)

# For the chart page of `report` and `serve`; a Node.js of one's own does as well.
command -v node >/dev/null && command -v npm >/dev/null || packages+=(nodejs npm)

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
    [[ $status == installed ]] || missing+=("$package")
done
if ((${#missing[@]})); then
    echo "setup: installing ${missing[*]}"
    as_root=()
    ((EUID == 0)) || as_root=(sudo)
    apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300)
    "${apt[@]}" update
    "${apt[@]}" install --yes --no-install-recommends "${missing[@]}" >/dev/null
fi

# Exactly the packages of the lock file. npm leaves a copy of it behind when it is done.
installed=chart_page/node_modules/.package-lock.json
if [[ ! $installed -nt chart_page/package-lock.json ]]; then
    echo "setup: installing the packages of the chart page"
    npm --prefix chart_page ci --no-audit --no-fund --loglevel error >/dev/null && touch "$installed" ||
        echo "setup: that failed; \`roofline report\` and \`serve\` will be off" >&2
fi
