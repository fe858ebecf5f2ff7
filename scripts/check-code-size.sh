#!/bin/bash
# SPDX-License-Identifier: MIT
# Builds the benchmark and fails when the library's machine code has outgrown its bound; measures no
# times.
#
#   scripts/check-code-size.sh
#
# Installs what is missing. The program is build/bench/bench/mm2d_bench.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh build bench

build=build/bench
mkdir -p $build
cmake -S . -B $build -G Ninja -DMM2D_BUILD_BENCHMARKS=ON > $build/build.log
cmake --build $build --parallel "$(nproc)" >> $build/build.log ||
    { tail -n 30 $build/build.log; exit 1; }
$build/bench/mm2d_bench --benchmark_filter='^no scene$' > $build/size.log 2>&1 ||
    { cat $build/size.log; exit 1; }
grep '^machine code' $build/size.log
