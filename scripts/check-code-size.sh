#!/bin/bash
# SPDX-License-Identifier: MIT
# Fails when the library's machine code has outgrown its bounds, which are for -O2: natively and for
# both ARMs, each without what MM2D_BUILD_LAYERS and MM2D_BUILD_LEVELS add and with it. Says also what
# a context takes of the heap. Measures no times.
#
#   scripts/check-code-size.sh
#
# Installs what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh build test bench targets
mkdir -p build
log=build/code-size.log
core_alone=(-DMM2D_BUILD_LAYERS=OFF -DMM2D_BUILD_LEVELS=OFF)

# check FOLDER NAME BOUND OPTION...: the library without its engines, by the program that knows its
# objects; the bound in KB. A build that the tests have made is used as it is.
check() {
    local folder=$1 name=$2 bound=$(($3 * 1024)) code heap
    shift 3
    if [ ! -f "$folder/build.ninja" ]; then
        set -- -DMM2D_WERROR=ON -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 "$@"
    else
        set --
    fi
    if ! cmake -S . -B "$folder" -G Ninja -DMM2D_BUILD_BENCHMARKS=ON "$@" > $log 2>&1 ||
        ! cmake --build "$folder" --parallel "$(nproc)" --target footprint >> $log 2>&1; then
        tail -n 30 $log
        exit 1
    fi
    code=$(sed -n 's/^machine code: \([0-9]*\) bytes/\1/p' $log)
    heap=$(sed -n 's/^heap of a context at rest: \([0-9]*\) bytes/\1/p' $log)
    echo "$name: machine code $code of at most $bound bytes, heap of a context at rest $heap bytes"
    [ "$code" -gt 0 ] && [ "$code" -le "$bound" ] && [ "$heap" -gt 0 ] || exit 1
}

# both NAME CORE ALL OPTION...: the core alone, and all. The tests' engines stand in for FreeType and
# ICU, which are not there for other machines.
both() {
    local name=$1 core=$2 all=$3
    shift 3
    set -- -DMM2D_BUILD_TESTS=ON -DMM2D_FONT_ENGINE=mm2d_fake_font \
        -DMM2D_LAYOUT_ENGINE=mm2d_fake_layout "$@"
    check "build/core-$name" "$name, core" "$core" "${core_alone[@]}" "$@"
    check "build/test-$name" "$name, all" "$all" "$@"
}

# The benchmark itself, which nothing else builds: all its scenes are set up and none is measured.
benchmark() {
    if ! cmake --build build/bench --parallel "$(nproc)" --target mm2d_bench > $log 2>&1 ||
        ! build/bench/bench/mm2d_bench --benchmark_filter='^no scene$' >> $log 2>&1; then
        tail -n 30 $log
        exit 1
    fi
}

check build/core-native "native, core" 128 "${core_alone[@]}"
check build/bench "native, all" 192
benchmark
both arm-64 128 192 -DCMAKE_TOOLCHAIN_FILE=scripts/toolchains/aarch64.cmake
arm32=-DCMAKE_TOOLCHAIN_FILE=scripts/toolchains/arm.cmake
both arm-32-neon 128 192 "$arm32" -DCMAKE_CXX_FLAGS=-mfpu=neon
# The vectors that are left without vector registers are taken apart into single numbers there.
both arm-32 160 192 "$arm32"
