#!/bin/bash
# SPDX-License-Identifier: MIT
# Builds and runs the tests.
#
#   scripts/test.sh                as users build the library, under sanitizers, and for 32-bit x86
#   scripts/test.sh --all-targets  also for other machines (emulated), with Clang, at -O0 and -O3,
#                                  and two threads under their sanitizer; all tests for 32-bit x86
#                                  in place of its core
#   scripts/test.sh TARGET...      these alone: native sanitized x86-32-core x86-32 x86-32-no-sse2
#                                  arm-32 arm-64 clang O0 O3 threads
#
# At -O0 lines are counted, for scripts/coverage.sh. Installs what is missing. Build folders are
# build/test-*; the summary at the end names a log for whatever failed.
set -euo pipefail
cd "$(dirname "$0")/.."

plain=(native sanitized)
others=(x86-32 x86-32-no-sse2 arm-32 arm-64 clang O0 O3 threads)
groups=(build test examples targets)
long_life= # 1: a million operations in one context instead of a tenth, once
case "${1:-}" in
    '') wanted=("${plain[@]}" x86-32-core) groups=(build test examples) ;;
    --all-targets)
        wanted=("${plain[@]}" "${others[@]}")
        long_life=1 ;;
    -*) sed -n '3,/^set/p' "$0" | grep '^#' | cut -c3-; exit 2 ;;
    *) wanted=("$@") ;;
esac
scripts/install-packages.sh "${groups[@]}"

# Leaves out debugging information, which would take a third of the time.
at_level() { printf -- '-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=%s' "$1"; }
with_examples=-DMM2D_BUILD_EXAMPLES=ON
count_lines="--coverage -fprofile-abs-path -fprofile-update=atomic"
sanitize="-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer"

# FreeType and ICU are not there for other machines; the tests' own engines are.
for_machine() {
    echo "-DCMAKE_TOOLCHAIN_FILE=scripts/toolchains/$1.cmake" \
        -DMM2D_FONT_ENGINE=mm2d_fake_font -DMM2D_LAYOUT_ENGINE=mm2d_fake_layout
}

# Tests left out, as a pattern. Emulated machines are slow, and what compares with slow models there
# would prove nothing about the machine that the picture hashes do not.
# Emulators may also stall on the test of two threads.
slow_models='Polyline\.MatchesUnion|PaintStrip.*/[nb]|RefinedPattern|RandomRamps|LongLife\.MemoryStays|Threads\.'
summary=()
failed=false

# run NAME LEFT_OUT CMAKE_ARGUMENTS...: configures, builds and tests in build/test-NAME.
run() {
    local name=$1 left_out=$2 folder=build/test-$1 start=$SECONDS result
    local log=$folder.log
    shift 2
    echo "== $name"
    mkdir -p build
    if ! cmake -S . -B "$folder" -G Ninja -DMM2D_BUILD_TESTS=ON -DMM2D_WERROR=ON "$@" > "$log" 2>&1 ||
        ! cmake --build "$folder" --parallel "$(nproc)" >> "$log" 2>&1; then
        grep -nE 'error|Error|FAILED' "$log" | head -n 20 || tail -n 20 "$log"
        result="BUILD FAILED, see $log"
        failed=true
    else
        find "$folder" -name '*.gcda' -delete # the counts of runs before
        ctest --test-dir "$folder" --parallel "$(nproc)" --output-on-failure --no-tests=error \
            --exclude-regex "$left_out" >> "$log" 2>&1 ||
            { failed=true; sed -n '/tests failed/,$p' "$log"; }
        result=$(grep -E 'tests passed|No tests' "$log" | tail -n 1)
        [[ $result == 100%* ]] || result="$result, see $log"
    fi
    echo "   $result"
    summary+=("$(printf '%-14s %4d s  %s' "$name" $((SECONDS - start)) "$result")")
}

for target in "${wanted[@]}"; do
    # shellcheck disable=SC2046 # the arguments are words
    case $target in
        native) MM2D_LONG_LIFE=$long_life run native '' $with_examples "$(at_level -O2)" ;;
        sanitized) run sanitized '' $with_examples "$(at_level '-O1 -g1')" "-DCMAKE_CXX_FLAGS=$sanitize" ;;
        # Arithmetic, memory, robustness and whole pictures, so that the plain run stays short.
        x86-32-core)
            run x86-32-core "$slow_models" $(for_machine i686) "$(at_level -O2)" \
                -DMM2D_CORE_TESTS=ON ;;
        x86-32) run x86-32 "$slow_models" $(for_machine i686) "$(at_level -O2)" ;;
        x86-32-no-sse2)
            run x86-32-no-sse2 "$slow_models" $(for_machine i686) \
                "$(at_level -O2)" -DCMAKE_CXX_FLAGS= ;;
        arm-32) run arm-32 "$slow_models" $(for_machine arm) "$(at_level -O2)" ;;
        arm-64) run arm-64 "$slow_models" $(for_machine aarch64) "$(at_level -O2)" ;;
        clang) run clang '' $with_examples -DCMAKE_CXX_COMPILER=clang++ "$(at_level -O2)" ;;
        O0) run O0 '' "$(at_level -O0)" "-DCMAKE_CXX_FLAGS=$count_lines" ;;
        O3) run O3 '' "$(at_level -O3)" ;;
        # Under the thread sanitizer, and nothing but the test of that name.
        threads)
            run threads '^([^T]|T[^h])' -DMM2D_FONT_ENGINE=mm2d_fake_font \
                -DMM2D_LAYOUT_ENGINE=mm2d_fake_layout -DMM2D_CORE_TESTS=ON "$(at_level '-O1 -g1')" \
                -DCMAKE_CXX_FLAGS=-fsanitize=thread ;;
        *) echo "unknown target $target"; exit 2 ;;
    esac
done

echo
printf '%s\n' "${summary[@]}"
if $failed; then
    echo "FAILED"
    exit 1
fi
echo "all tests passed"
