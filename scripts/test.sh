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

# run NAME CMAKE_ARGUMENTS...: configures, builds and tests in build/test-NAME.
run() {
    local name=$1 folder=build/test-$1 start=$SECONDS result
    local log=$folder.log
    shift
    echo "== $name"
    mkdir -p build
    if ! cmake -S . -B "$folder" -G Ninja -DMM2D_WERROR=ON "$@" > "$log" 2>&1 ||
        ! cmake --build "$folder" --parallel "$(nproc)" >> "$log" 2>&1; then
        grep -nE 'error|Error|FAILED' "$log" | head -n 20 || tail -n 20 "$log"
        result="BUILD FAILED, see $log"
        failed=true
    else
        ctest --test-dir "$folder" --parallel "$(nproc)" --output-on-failure --no-tests=error \
            >> "$log" 2>&1 || { failed=true; sed -n '/tests failed/,$p' "$log"; }
        result=$(grep -E 'tests passed|No tests' "$log" | tail -n 1)
        [[ $result == 100%* ]] || result="$result, see $log"
    fi
    echo "   $result"
    summary+=("$(printf '%-10s %4d s  %s' "$name" $((SECONDS - start)) "$result")")
}

sanitize="-O1 -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer"

run native -DMM2D_BUILD_EXAMPLES=ON
run sanitized -DMM2D_BUILD_EXAMPLES=ON -DCMAKE_CXX_FLAGS="$sanitize"
# Other machines have neither FreeType nor ICU here.
cross() {
    run "$1" -DCMAKE_TOOLCHAIN_FILE="$PWD/scripts/toolchains/$2.cmake" \
        -DMM2D_FONT_ENGINE=mm2d_fake_font -DMM2D_LAYOUT_ENGINE=mm2d_fake_layout
}
cross x86-32 i686
if $all_targets; then
    cross arm-32 arm
    cross arm-64 aarch64
    run clang -DMM2D_BUILD_EXAMPLES=ON -DCMAKE_CXX_COMPILER=clang++
    run O0 -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O0 -g"
    run O3 -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O3
fi

echo
printf '%s\n' "${summary[@]}"
if $failed; then
    echo "FAILED"
    exit 1
fi
echo "all tests passed"
