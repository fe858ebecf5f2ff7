#!/bin/bash
# SPDX-License-Identifier: MIT
# Line coverage of the library by its tests: a summary for each folder, and all lines that are
# never reached. Fails when less than 95 % of graphics2d, math, memory and util is reached.
#
#   scripts/coverage.sh           runs the tests at -O0, which count lines
#   scripts/coverage.sh --report  says what their last run has counted
#
# Installs what is missing. build/coverage/library.txt names the missing lines of every file, and
# build/coverage/library.html shows them; the same for the platform's engines in platform.*.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh coverage
[ "${1:-}" = --report ] || scripts/test.sh O0

build=build/coverage
mkdir -p $build
# report NAME MINIMUM FOLDER...
report() {
    local name=$1 minimum=$2 filters=()
    shift 2
    for folder in "$@"; do filters+=(--filter "$folder/"); done
    echo "== $name"
    gcovr --root . "${filters[@]}" --print-summary -j 2 \
        --txt "$build/$name.txt" --html-details "$build/$name.html" \
        --fail-under-line "$minimum" build/test-O0 | grep '^lines'
}
report platform 0 platform
report library 95 graphics2d math memory util
