// SPDX-License-Identifier: MIT
// The rasteriser for upright rectangles. Internal.
#pragma once

#include "graphics2d/PixelBox.h"
#include "math/MMPoint2D.h"

namespace KAVO {
namespace Graphics2D {

// Whether the points are the corners of an upright rectangle in turn, the first perhaps once more.
// It may be empty.
bool isUprightRectangle(const MMPoint2D* points, uint32_t count);

// Whether they are, and drawRectangle draws the same as drawMonotone would.
bool isPlainRectangle(const MMPoint2D* points, uint32_t count);

// Draws the one with these opposite corners. False when scratch memory ran out.
bool drawRectangle(MMContext2D& context, const PixelBox& visible, const MMPoint2D& corner,
                   const MMPoint2D& opposite);

} // namespace Graphics2D
} // namespace KAVO
