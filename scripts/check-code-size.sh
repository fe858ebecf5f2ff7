#!/bin/bash
# SPDX-License-Identifier: MIT
# Fails when the library's machine code has outgrown its bounds, which are for -O2: natively, where
# the benchmark holds it, and for both ARMs. Measures no times.
#
#   scripts/check-code-size.sh
#
# Installs what is missing. The program is build/bench/bench/mm2d_bench.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh build test bench targets

build=build/bench
mkdir -p $build
cmake -S . -B $build -G Ninja -DMM2D_BUILD_BENCHMARKS=ON \
    -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 > $build/build.log
cmake --build $build --parallel "$(nproc)" >> $build/build.log ||
    { tail -n 30 $build/build.log; exit 1; }
$build/bench/mm2d_bench --benchmark_filter='^no scene$' > $build/size.log 2>&1 ||
    { cat $build/size.log; exit 1; }
grep '^machine code' $build/size.log

# check NAME BOUND TOOLCHAIN TOOLS FLAGS: the library for another machine, without its engines. A
# build that the tests have made is looked at as it is.
check() {
    local folder=build/test-$1 bound=$2 bytes
    if [ ! -f "$folder/build.ninja" ]; then
        cmake -S . -B "$folder" -G Ninja -DMM2D_BUILD_TESTS=ON -DMM2D_WERROR=ON \
            -DCMAKE_TOOLCHAIN_FILE="scripts/toolchains/$3.cmake" \
            -DMM2D_FONT_ENGINE=mm2d_fake_font -DMM2D_LAYOUT_ENGINE=mm2d_fake_layout \
            -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -DCMAKE_CXX_FLAGS="$5" > $build/other.log 2>&1
    fi
    cmake --build "$folder" --parallel "$(nproc)" --target mm2d >> $build/other.log 2>&1 ||
        { tail -n 30 $build/other.log; exit 1; }
    bytes=$(find "$folder/CMakeFiles/mm2d.dir" -name '*.o' -exec "$4-size" -A -d {} + |
        awk '/^\.text/ { sum += $2 } END { print sum }')
    echo "machine code for $1: $bytes of at most $bound bytes"
    [ "$bytes" -gt 0 ] && [ "$bytes" -le "$bound" ] || exit 1
}
check arm-64 $((128 * 1024)) aarch64 aarch64-linux-gnu ''
check arm-32-neon $((128 * 1024)) arm arm-linux-gnueabihf -mfpu=neon
# Vectors of four pixels are taken apart into single numbers there.
check arm-32 $((160 * 1024)) arm arm-linux-gnueabihf ''
