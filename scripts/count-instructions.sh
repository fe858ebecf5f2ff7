#!/bin/bash
# SPDX-License-Identifier: MIT
# Counts what a pixel takes of instructions on both ARMs, under QEMU's user emulation: the number of
# three drawings less that of one, by two and by the pixels, so that it holds all but the program's
# start. Prints a table for the classic and for the refined rules, with the goals beside. Measures no
# times.
#
#   scripts/count-instructions.sh [SCENE...]
#
# Scenes: opaque translucent linear radial copy (an image 1:1) bilinear (enlarged and turned) alpha
# (an image with alpha 1:1). Installs what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh build test bench targets
mkdir -p build
log=build/instructions.log
counter=build/instruction-counter.so
scenes=("$@")
[ $# -gt 0 ] || scenes=(opaque translucent linear radial copy bilinear alpha)

# Instructions a pixel, with vector registers and without; an image's copy and its alpha have none
# without.
# shellcheck disable=SC2034 # used by name
declare -A vector_goals=([opaque]=0.7 [translucent]=5 [linear]=8 [radial]=45 [copy]=2 [bilinear]=45
    [alpha]=12)
# shellcheck disable=SC2034
declare -A plain_goals=([translucent]=24 [linear]=20 [radial]=90 [bilinear]=130)

build() {
    local folder=$1
    shift
    if ! cmake -S . -B "$folder" -G Ninja -DMM2D_BUILD_BENCHMARKS=ON -DMM2D_BUILD_TESTS=ON \
        -DMM2D_FONT_ENGINE=mm2d_fake_font -DMM2D_LAYOUT_ENGINE=mm2d_fake_layout \
        -DMM2D_WERROR=ON -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 "$@" > $log 2>&1 ||
        ! cmake --build "$folder" --parallel "$(nproc)" --target mm2d_instructions >> $log 2>&1; then
        tail -n 30 $log
        exit 1
    fi
}

# instructions EMULATOR FOLDER SCENE MODE TIMES: the number of the scene's pixels, then theirs.
instructions() {
    local numbers
    # shellcheck disable=SC2086 # the emulator has arguments
    numbers=$($1 -plugin $counter "$2/bench/mm2d_instructions" "$3" "$4" "$5" 2>&1 | tr '\n' ' ')
    [[ $numbers =~ ^[0-9]+\ [0-9]+\ $ ]] || { echo "cannot count: $numbers" >&2; return 1; }
    echo "$numbers"
}

# per_pixel EMULATOR FOLDER SCENE MODE
per_pixel() {
    local once thrice pixels
    once=$(instructions "$1" "$2" "$3" "$4" 1) || return 1
    thrice=$(instructions "$1" "$2" "$3" "$4" 3) || return 1
    read -r pixels once <<< "$once"
    read -r _ thrice <<< "$thrice"
    awk -v n="$((thrice - once))" -v pixels="$pixels" 'BEGIN { printf "%.2f", n / 2 / pixels }'
}

# count NAME EMULATOR FOLDER GOALS
count() {
    local scene mode goal counted
    local -n goals=$4
    for scene in "${scenes[@]}"; do
        goal=${goals[$scene]:-}
        printf '%-12s %-12s' "$1" "$scene"
        for mode in classic refined; do
            counted=$(per_pixel "$2" "$3" "$scene" "$mode") || exit 1
            printf ' %8s%s' "$counted" \
                "$(awk -v n="$counted" -v goal="${goal:-$counted}" 'BEGIN { print (n > goal ? "!" : " ") }')"
        done
        printf ' %6s\n' "${goal:--}"
    done
}

c++ -std=c++17 -O2 -Wall -Wextra -Werror -shared -fPIC bench/InstructionCounter.cpp -o $counter
build build/test-arm-64 -DCMAKE_TOOLCHAIN_FILE=scripts/toolchains/aarch64.cmake
build build/test-arm-32 -DCMAKE_TOOLCHAIN_FILE=scripts/toolchains/arm.cmake

echo "Instructions a pixel under QEMU; ! where they are more than the goal:"
printf '%-12s %-12s %8s  %8s  %6s\n' target scene classic refined goal
count arm-64 "qemu-aarch64 -L /usr/aarch64-linux-gnu" build/test-arm-64 vector_goals
# As everybody gets it; the level of the processor is chosen when the program runs.
count arm-32-neon "env MM2D_LEVEL=neon qemu-arm -L /usr/arm-linux-gnueabihf" build/test-arm-32 \
    vector_goals
count arm-32-base "env MM2D_LEVEL=base qemu-arm -L /usr/arm-linux-gnueabihf" build/test-arm-32 \
    plain_goals
