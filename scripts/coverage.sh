#!/bin/bash
# SPDX-License-Identifier: MIT
# Line coverage of the library by its tests: a summary for each folder, and all lines that are
# never reached. Fails when less than 95 % of graphics2d, math, memory and util is reached.
#
#   scripts/coverage.sh
#
# Installs what is missing. build/coverage/library.txt names the missing lines of every file, and
# build/coverage/library.html shows them; the same for the platform's engines in platform.*.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh build test examples coverage

build=build/coverage
mkdir -p $build
echo "== building and testing"
cmake -S . -B $build -G Ninja -DMM2D_BUILD_TESTS=ON -DMM2D_BUILD_EXAMPLES=ON -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS="-O1 --coverage -fprofile-abs-path -fprofile-update=atomic" > $build/build.log
cmake --build $build --parallel "$(nproc)" >> $build/build.log ||
    { tail -n 30 $build/build.log; exit 1; }
find $build -name '*.gcda' -delete
ctest --test-dir $build --parallel "$(nproc)" >> $build/build.log ||
    { tail -n 30 $build/build.log; exit 1; }

# report NAME MINIMUM FOLDER...
report() {
    local name=$1 minimum=$2 filters=()
    shift 2
    for folder in "$@"; do filters+=(--filter "$folder/"); done
    echo "== $name"
    gcovr --root . "${filters[@]}" --print-summary -j 2 \
        --txt "$build/$name.txt" --html-details "$build/$name.html" \
        --fail-under-line "$minimum" $build | grep '^lines'
}
report platform 0 platform
report library 95 graphics2d math memory util
