// SPDX-License-Identifier: MIT
// Entries of the rasterisers with 32-bit counts, for paths and strokes. Internal.
//
// The public operations take a 16-bit count; a path of 70,000 points must not wrap. All fill with
// the current paint and return the bounds of all points, whatever of the shape is visible; nothing
// is stored in the context. Fewer than three points draw nothing and have empty bounds; so do
// points on one horizontal line, where the shape is looked at first.
#pragma once

#include "graphics2d/BoundsUnion.h"
#include "graphics2d/raster/Contours.h"

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

// The same for the outline of a stroke: by the non-zero rule, and exact where it is thin. Here and
// below, leftOut bounds points out of sight that the outlines have lost.
BoundsUnion fillOutline(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                        const BoundsUnion& leftOut = {});

// The same for a shape of several closed outlines. It counts as one polygon, with what that means
// for monotone and for thin ones, only where a single outline of three different points is left.
BoundsUnion fillContours(MMContext2D& context, const Contours& contours, MMFillRule rule,
                         ThinShapes thinShapes, const BoundsUnion& leftOut = {});

// As MMContext2D::rasterMonotonePolygon.
BoundsUnion fillMonotonePolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count);

// As MMContext2D::rasterComplexPolygon.
BoundsUnion fillComplexPolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                               MMFillRule rule);

} // namespace Graphics2D
} // namespace KAVO
