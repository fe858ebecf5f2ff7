#!/bin/bash
# SPDX-License-Identifier: MIT
# Installs the library and its SVG engine, shared and static, and builds and runs tests/consumer
# against what was installed, found through CMake and through pkg-config; then builds the consumer with the library's
# tree as a part of its own. Every installed header must compile alone, without warnings, and
# whatever headers of the same names a program has.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh build examples clang

folder=$PWD/build/install-check
rm -rf "$folder"
mkdir -p "$folder"

# Shows a command's output only when it fails.
quietly() {
    "$@" > "$folder/log" 2>&1 || { cat "$folder/log"; exit 1; }
}

# What is installed is looked at, not how fast it is.
quick=-DCMAKE_BUILD_TYPE=Debug

# check_header DECOYS HEADERS NAME
check_header() {
    local program="#include <mm2d/$3>"
    g++ -std=c++17 -pedantic-errors -Wall -Wextra -Wconversion -Wshadow -Werror -fsyntax-only \
        -I"$1" -I"$2" -x c++ - <<< "$program" &&
        clang++ -std=c++17 -Wall -Wextra -Wpedantic -Werror -fsyntax-only \
            -I"$1" -I"$2" -x c++ - <<< "$program" ||
        return 255 # which ends xargs
}
export -f check_header

# check_headers FOLDER: what is installed in FOLDER/mm2d.
check_headers() {
    local header decoys=$folder/decoys
    for header in $(cd "$1/mm2d" && find . -name '*.h' | sort); do
        mkdir -p "$decoys/$(dirname "$header")"
        echo '#error "a header of the program in place of the library'"'"'s"' > "$decoys/$header"
    done
    # shellcheck disable=SC2016 # the inner shell expands it
    (cd "$decoys" && find . -name '*.h') |
        xargs -P "$(nproc)" -I{} bash -c 'check_header "$@"' _ "$decoys" "$1" {}
}

for kind in shared static; do
    echo "== $kind library"
    prefix=$folder/$kind/prefix
    shared=$([ $kind = shared ] && echo ON || echo OFF)
    quietly cmake -S . -B "$folder/$kind/library" -G Ninja -DBUILD_SHARED_LIBS="$shared" \
        $quick -DMM2D_BUILD_SVG=ON
    quietly cmake --build "$folder/$kind/library" --parallel "$(nproc)"
    quietly cmake --install "$folder/$kind/library" --prefix "$prefix"
    libraries=$(dirname "$(find "$prefix" -name 'libmm2d.*' | head -n 1)")

    if [ $kind = shared ]; then
        objdump -p "$libraries/libmm2d.so" | grep -q 'SONAME *libmm2d\.so\.1$'
        check_headers "$prefix/include"
    fi

    echo "-- through CMake"
    quietly cmake -S tests/consumer -B "$folder/$kind/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix"
    quietly cmake --build "$folder/$kind/cmake"
    "$folder/$kind/cmake/consumer"
    "$folder/$kind/cmake/own_names"
    "$folder/$kind/cmake/svg_consumer"

    echo "-- through pkg-config"
    flags=$(PKG_CONFIG_PATH=$libraries/pkgconfig pkg-config --$kind --cflags --libs mm2d)
    for program in consumer own_names; do
        # shellcheck disable=SC2086 # the flags are words
        g++ -std=c++17 -Itests/consumer/own tests/consumer/$program.cpp \
            -o "$folder/$kind/$program" $flags
        LD_LIBRARY_PATH=$libraries "$folder/$kind/$program"
    done
    flags=$(PKG_CONFIG_PATH=$libraries/pkgconfig pkg-config --$kind --cflags --libs mm2d-svg)
    # shellcheck disable=SC2086
    g++ -std=c++17 tests/consumer/svg_consumer.cpp -o "$folder/$kind/svg_consumer" $flags
    LD_LIBRARY_PATH=$libraries "$folder/$kind/svg_consumer"
done

echo "== as a part of another project"
parent=$folder/parent
quietly cmake -S tests/consumer -B "$parent" -G Ninja -DLIBRARY_TREE="$PWD"
quietly cmake --build "$parent" --parallel "$(nproc)"
"$parent/consumer"
"$parent/own_names"
if grep -E '^(BUILD_SHARED_LIBS|BUILD_TESTING|CMAKE_BUILD_TYPE):[A-Z]*=.' "$parent/CMakeCache.txt"; then
    echo "the library has set what belongs to the parent project"
    exit 1
fi
[ -f "$parent/mm2d/libmm2d.a" ] || { echo "not the kind of library that the parent builds"; exit 1; }
ctest --test-dir "$parent" -N 2>&1 | grep -qE 'Total Tests: 0|No tests' ||
    { echo "the parent project has got tests of the library"; exit 1; }
quietly cmake --install "$parent" --prefix "$folder/parent-prefix"
[ ! -e "$folder/parent-prefix" ] || { echo "the parent project installs the library"; exit 1; }
quietly cmake -S tests/consumer -B "$parent-shared" -G Ninja -DLIBRARY_TREE="$PWD" \
    -DBUILD_SHARED_LIBS=ON
grep -q 'libmm2d\.so' "$parent-shared/build.ninja" ||
    { echo "BUILD_SHARED_LIBS is not read"; exit 1; }

echo "the library can be used in all these ways"
