#!/bin/bash
# Builds and runs all tests: as users build the library, under sanitizers, and for 32-bit x86.
#
#   scripts/test.sh [--all-targets]
#
# --all-targets adds 32-bit and 64-bit ARM (emulated), Clang, -O0 and -O3. Installs what is missing.
# Build folders are build/test-*; the summary at the end names a log for whatever failed.
set -euo pipefail
cd "$(dirname "$0")/.."

all_targets=false
case "${1:-}" in
    '') ;;
    --all-targets) all_targets=true ;;
    *) sed -n '2,/^set/p' "$0" | grep '^#' | cut -c3-; exit 2 ;;
esac

groups=(build test examples)
$all_targets && groups+=(targets)
scripts/install-packages.sh "${groups[@]}"

summary=()
failed=false

# run NAME SKIPPED CMAKE_ARGUMENTS...: configures, builds and tests in build/test-NAME, at -O2 unless
# the arguments say otherwise and without debugging information, which would take a third of the
# time. Tests whose names match SKIPPED are left out.
run() {
    local name=$1 skipped=$2 folder=build/test-$1 start=$SECONDS result
    local log=$folder.log
    shift 2
    echo "== $name"
    mkdir -p build
    if ! cmake -S . -B "$folder" -G Ninja -DMM2D_WERROR=ON -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 \
            "$@" > "$log" 2>&1 ||
        ! cmake --build "$folder" --parallel "$(nproc)" >> "$log" 2>&1; then
        grep -nE 'error|Error|FAILED' "$log" | head -n 20 || tail -n 20 "$log"
        result="BUILD FAILED, see $log"
        failed=true
    else
        ctest --test-dir "$folder" --parallel "$(nproc)" --output-on-failure --no-tests=error \
            --exclude-regex "$skipped" >> "$log" 2>&1 ||
            { failed=true; sed -n '/tests failed/,$p' "$log"; }
        result=$(grep -E 'tests passed|No tests' "$log" | tail -n 1)
        [[ $result == 100%* ]] || result="$result, see $log"
    fi
    echo "   $result"
    summary+=("$(printf '%-14s %4d s  %s' "$name" $((SECONDS - start)) "$result")")
}

# Emulated machines are slow. What compares with slow models there would prove nothing about the
# machine that the picture hashes do not.
slow_models='Polyline\.MatchesUnion|PaintStrip|RasterHostile|RasterQuality'

# cross NAME TOOLCHAIN SKIPPED CMAKE_ARGUMENTS...: for a machine without FreeType and ICU, whose
# engines come from the tests.
cross() {
    local name=$1 toolchain=$PWD/scripts/toolchains/$2.cmake skipped=$slow_models${3:+|$3}
    shift 3
    run "$name" "$skipped" -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
        -DMM2D_FONT_ENGINE=mm2d_fake_font -DMM2D_LAYOUT_ENGINE=mm2d_fake_layout "$@"
}

sanitize="-O1 -g1 -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer"

run native '' -DMM2D_BUILD_EXAMPLES=ON
run sanitized '' -DMM2D_BUILD_EXAMPLES=ON -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="$sanitize"
cross x86-32 i686 ''
if $all_targets; then
    # Without SSE2 the compiler keeps doubles in registers of 80 bits, which the models of these
    # tests do not expect. The library itself has no floating point.
    cross x86-32-no-sse2 i686 "$double_models" -DCMAKE_CXX_FLAGS=
    cross arm-32 arm ''
    cross arm-64 aarch64 ''
    run clang '' -DMM2D_BUILD_EXAMPLES=ON -DCMAKE_CXX_COMPILER=clang++
    run O0 '' -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O0
    run O3 '' -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O3
fi

echo
printf '%s\n' "${summary[@]}"
if $failed; then
    echo "FAILED"
    exit 1
fi
echo "all tests passed"
