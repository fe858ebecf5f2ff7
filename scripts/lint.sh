#!/bin/bash
# SPDX-License-Identifier: MIT
# Looks for faults without running anything: shellcheck over all scripts, clang-tidy with the checks
# of .clang-tidy over the library, the SVG engine, the tools and the examples.
#
#   scripts/lint.sh [FILE.cpp...]
#
# With files, clang-tidy alone over these. Installs what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh build examples lint clang

files=("$@")
if [ $# = 0 ]; then
    echo "== shellcheck"
    { git ls-files '*.sh'; echo .ci/run; } | xargs shellcheck
    mapfile -t files < <(git ls-files 'graphics2d/*.cpp' 'math/*.cpp' 'memory/*.cpp' 'util/*.cpp' \
        'platform/*.cpp' 'svg/*.cpp' 'tools/*.cpp' 'examples/*.cpp')
fi

echo "== clang-tidy"
build=build/lint
# With Clang's own options; it does not know all of GCC's.
cmake -S . -B $build -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DMM2D_BUILD_EXAMPLES=ON \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON > /dev/null
# Complaints are on standard output; on standard error is only how many were held back.
printf '%s\0' "${files[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy-14 -p $build --quiet 2> $build/tidy.log || exit 1
echo "no complaints"
