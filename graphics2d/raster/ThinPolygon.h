// SPDX-License-Identifier: MIT
// The rule of thin polygons: what lies within one row of pixels is one span. Internal.
//
// It belongs to shapes that are filled with anti-aliasing by the classic rules: a card of half a
// pixel's height is a line of half the opacity, as long as the shape's bounds. Outlines of strokes
// ask for their exact area instead, for a nearly level hairline would come out as dark as its
// bounds are high; by the refined rules every shape is drawn by its exact area.
#pragma once

#include "graphics2d/raster/PolygonBounds.h"

namespace KAVO {
namespace Graphics2D {

// Whether the rule holds for a shape with these bounds, which lies within one row then.
bool isThinPolygon(const MMContext2D& context, const BoundsUnion& bounds);

// Draws it, if its row is among the visible pixels: the opacity is the paint's times the height.
void drawThinPolygon(MMContext2D& context, const BoundsUnion& bounds, const PixelBox& visible);

} // namespace Graphics2D
} // namespace KAVO
