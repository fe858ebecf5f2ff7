#!/bin/bash
# SPDX-License-Identifier: MIT
# Installs the library, shared and static, and builds and runs tests/consumer against what was
# installed, found through CMake and through pkg-config. Every installed header must compile alone.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh build

folder=$PWD/build/install-check
rm -rf "$folder"
mkdir -p "$folder"

# Shows a command's output only when it fails.
quietly() {
    "$@" > "$folder/log" 2>&1 || { cat "$folder/log"; exit 1; }
}

for kind in shared static; do
    echo "== $kind library"
    prefix=$folder/$kind/prefix
    shared=$([ $kind = shared ] && echo ON || echo OFF)
    quietly cmake -S . -B "$folder/$kind/library" -G Ninja \
        -DBUILD_SHARED_LIBS=$shared \
        -DCMAKE_INSTALL_PREFIX="$prefix" -DMM2D_WERROR=ON
    quietly cmake --build "$folder/$kind/library" --parallel "$(nproc)"
    quietly cmake --install "$folder/$kind/library"
    libraries=$(dirname "$(find "$prefix" -name 'libmm2d.*' | head -n 1)")

    if [ $kind = shared ]; then
        objdump -p "$libraries/libmm2d.so" | grep -q 'SONAME *libmm2d\.so\.1$'
    fi

    (cd "$prefix/include/mm2d" && find . -name '*.h' | sort | while read -r header; do
        echo "#include \"$header\"" |
            g++ -std=c++17 -Wall -Wextra -Werror -fsyntax-only -I. -x c++ -
    done)

    echo "-- through CMake"
    quietly cmake -S tests/consumer -B "$folder/$kind/cmake" -G Ninja \
        -DCMAKE_PREFIX_PATH="$prefix"
    quietly cmake --build "$folder/$kind/cmake"
    "$folder/$kind/cmake/consumer"

    echo "-- through pkg-config"
    flags=$(PKG_CONFIG_PATH=$libraries/pkgconfig pkg-config --$kind --cflags --libs mm2d)
    # shellcheck disable=SC2086 # the flags are words
    g++ -std=c++17 tests/consumer/main.cpp -o "$folder/$kind/consumer" $flags
    LD_LIBRARY_PATH=$libraries "$folder/$kind/consumer"
done
echo "the installed library can be used both ways"
