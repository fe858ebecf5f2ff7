// SPDX-License-Identifier: MIT
// Entries of the rasterisers with 32-bit counts, for paths and strokes. Internal.
//
// The public operations take a 16-bit count; a path of 70,000 points must not wrap. All fill with
// the current paint and return the bounds of the polygon, whatever of it is visible; nothing is
// stored in the context. A polygon of fewer than three points, or one that the classification
// finds on one horizontal line, draws nothing and has empty bounds.
#pragma once

#include "graphics2d/BoundsUnion.h"

namespace KAVO {
namespace Graphics2D {

// What becomes of a monotone polygon within one row of pixels, with anti-aliasing.
enum class ThinShapes {
    kOneSpan, // the rule of ThinPolygon.h
    kExact,   // its area, as of any other
};

// As MMContext2D::rasterPolygon, by the given fill rule instead of the context's.
BoundsUnion fillPolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                        MMFillRule rule);

// The same for the outline of a stroke: by the non-zero rule, and exact where it is thin.
BoundsUnion fillOutline(MMContext2D& context, const MMPoint2D* points, uint32_t count);

// As MMContext2D::rasterMonotonePolygon.
BoundsUnion fillMonotonePolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                                ThinShapes thinShapes);

// As MMContext2D::rasterComplexPolygon.
BoundsUnion fillComplexPolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                               MMFillRule rule);

} // namespace Graphics2D
} // namespace KAVO
