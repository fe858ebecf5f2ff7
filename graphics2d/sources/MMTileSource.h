// SPDX-License-Identifier: MIT
// Images that are repeated or mirrored without end.
//
//     MMTileSource bricks;
//     setTileSource(context.fillPaint, bricks, image, context.transform, kFilterBilinear,
//                   kTileRepeat, kTileRepeat);
//
// The paint then reads the record and the image's pixels, which must stay where they are as long as
// the paint is drawn with. paintOpacity is left alone.
#pragma once

#include "../PaintSetup.h"
#include "MMSourceAxis.h"

namespace KAVO {
namespace Graphics2D {

// How an image goes on beyond its edges, in one direction.
enum MMTileMode : uint8_t {
    kTileRepeat = 0, // from its other edge again
    kTileMirror = 1  // back and forth
};

// A direction of the image.
struct MMTileAxis {
    MMSourceAxis texels; // 2^28 to a texel; all modulo the period, and at most half of it
    int64_t period;      // after which texels come again, likewise
    int64_t reciprocal;  // 2^32 by the period in texels
    int32_t size;        // texels
};

// Filled in by the function below.
struct MMTileSource {
    MMTileAxis across;
    MMTileAxis down;
    const Pixel* pixels;
    uint32_t rowLength; // pixels from the start of one row to the next
    Pixel alphaBits;    // set in all pixels
};

#pragma GCC visibility push(default)

// An image whose texel (i, j) covers the square from (i, j) to (i + 1, j + 1) of its own space, and
// that is repeated or mirrored at its edges, across and down. The transform maps that space to
// device pixels. Pixels are sampled at their centres; the smoothing filters mix texels across the
// edges of the tiles as anywhere. Unlike those of a pattern the image's pixels are premultiplied,
// as layers are, and its rows lie rowBytes apart (or width * 4, if that is more). Whether it has
// alpha is taken from the low byte of its pixmapExtra; without it is drawn as opaque. An image
// without texels, or a singular transform, draws nothing.
void setTileSource(MMPaint& paint, MMTileSource& source, const MMPixmap& image,
                   const Matrix2D& transform, MMPatternFilter filter, MMTileMode across,
                   MMTileMode down);

#pragma GCC visibility pop

} // namespace Graphics2D
} // namespace KAVO
