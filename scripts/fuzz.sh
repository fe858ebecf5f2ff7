#!/bin/bash
# SPDX-License-Identifier: MIT
# Builds and runs all fuzzers, two at a time, starting from the inputs in fuzz/corpus.
#
#   scripts/fuzz.sh [SECONDS [FUZZER...]]
#
# SECONDS is the time for each (60). Installs what is missing. What the fuzzers find on the way is
# kept in build/fuzz/corpus; an input that breaks something, or takes 100 seconds (about two without
# the sanitizers), is named at the end, left in build/fuzz/findings, and printed with what was said
# of it, for who sees the output alone.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true
scripts/install-packages.sh build examples fuzz

build=build/fuzz
fuzzers=("$@")
[ ${#fuzzers[@]} != 0 ] || fuzzers=(paths paints text strings svg)
sanitize="-O1 -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all"

echo "== building the fuzzers"
mkdir -p $build/findings
cmake -S . -B $build -G Ninja -DBUILD_SHARED_LIBS=OFF \
    -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS="$sanitize" \
    -DMM2D_BUILD_EXAMPLES=ON -DMM2D_BUILD_FUZZERS=ON > $build/build.log
cmake --build $build --target fuzzers --parallel "$(nproc)" >> $build/build.log ||
    { tail -n 30 $build/build.log; exit 1; }

echo "== ${fuzzers[*]}: $seconds s each"
# Prints one line; what broke is in the log that it names.
run() {
    local name=$1 log=$build/$1.log
    mkdir -p "$build/corpus/$name"
    if $build/fuzz/fuzz_"$name" -max_total_time="$seconds" -timeout=100 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$build/findings/$name-" \
        "$build/corpus/$name" "fuzz/corpus/$name" > "$log" 2>&1; then
        echo "$name: $(sed -n 's/stat::number_of_executed_units: *//p' "$log") inputs, nothing found"
    else
        echo "$name: $(sed -n 's/.*Test unit written to //p' "$log") FOUND, see $log"
        sed -n '/runtime error:\|ERROR:\|does not hold:/,$p' "$log"
        return 1
    fi
}
export -f run
export build seconds
printf '%s\n' "${fuzzers[@]}" | xargs -P 2 -I{} bash -c 'run {}'
