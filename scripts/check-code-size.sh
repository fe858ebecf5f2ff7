#!/bin/bash
# SPDX-License-Identifier: MIT
# Fails when the library's machine code has outgrown its bounds, which are for -O2: natively and for
# both ARMs, each without what MM2D_BUILD_LAYERS adds and with it. Measures no times.
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

# check FOLDER NAME BOUND SIZE OPTION...: the library without its engines, by the program that knows
# its objects' sizes. A build that the tests have made is looked at as it is.
check() {
    local folder=$1 name=$2 bound=$(($3 * 1024)) size=$4 bytes
    shift 4
    if [ ! -f "$folder/build.ninja" ]; then
        cmake -S . -B "$folder" -G Ninja -DMM2D_BUILD_TESTS=ON -DMM2D_WERROR=ON \
            -DMM2D_FONT_ENGINE=mm2d_fake_font -DMM2D_LAYOUT_ENGINE=mm2d_fake_layout \
            -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 "$@" > $build/other.log 2>&1
    fi
    cmake --build "$folder" --parallel "$(nproc)" --target mm2d >> $build/other.log 2>&1 ||
        { tail -n 30 $build/other.log; exit 1; }
    bytes=$(find "$folder/CMakeFiles/mm2d.dir" -name '*.o' -exec "$size" -A -d {} + |
        awk '/^\.text/ { sum += $2 } END { print sum }')
    echo "machine code for $name: $bytes of at most $bound bytes"
    [ "$bytes" -gt 0 ] && [ "$bytes" -le "$bound" ] || exit 1
}

# both NAME CORE ALL TOOLS OPTION...: the core alone, and all, in KB.
both() {
    local name=$1 core=$2 all=$3 size=$4-size
    shift 4
    check "build/size-$name" "$name, core" "$core" "$size" -DMM2D_BUILD_LAYERS=OFF "$@"
    check "build/test-$name" "$name, all" "$all" "$size" "$@"
}

check build/size-native "native, core" 128 size -DMM2D_BUILD_LAYERS=OFF
both arm-64 128 192 aarch64-linux-gnu -DCMAKE_TOOLCHAIN_FILE=scripts/toolchains/aarch64.cmake
arm32=-DCMAKE_TOOLCHAIN_FILE=scripts/toolchains/arm.cmake
both arm-32-neon 128 192 arm-linux-gnueabihf "$arm32" -DCMAKE_CXX_FLAGS=-mfpu=neon
# Vectors of four pixels are taken apart into single numbers there.
both arm-32 160 192 arm-linux-gnueabihf "$arm32"
