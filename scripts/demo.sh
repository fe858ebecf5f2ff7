#!/bin/bash
# SPDX-License-Identifier: MIT
# Builds the example programs and renders the gallery, the example drawings and several hundred
# icons and drawings from Debian packages to PNG files.
#
#   scripts/demo.sh
#
# Installs what is missing. The pictures are in build/demo/pictures.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh build examples

build=build/demo
pictures=$build/pictures
mkdir -p $pictures

echo "== building the examples"
# Without debugging information, which would take a third of the time.
cmake -S . -B $build -G Ninja -DMM2D_BUILD_EXAMPLES=ON \
    -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 > $build/build.log
cmake --build $build --parallel "$(nproc)" >> $build/build.log ||
    { tail -n 30 $build/build.log; exit 1; }

echo "== gallery and example drawings"
$build/examples/hello $pictures/hello.ppm
$build/examples/piechart $pictures/piechart.png
$build/examples/guide $pictures/guide.png
$build/examples/gallery $pictures/gallery.png
for drawing in examples/drawings/*.svg; do
    # Everything in them is meant to be drawn, with a glyph for every character.
    if ! complaints=$($build/tools/svg2png --size 800 --background white "$drawing" \
        "$pictures/$(basename "$drawing" .svg).png" 2>&1) || [ -n "$complaints" ]; then
        echo "$complaints" >&2
        exit 1
    fi
done

echo "== icons and drawings from Debian packages"
scripts/render-corpus.sh $build $pictures/corpus

echo
echo "pictures:"
ls -1 $pictures/*.png
echo "contact sheets:"
ls -1 $pictures/corpus/*.png
