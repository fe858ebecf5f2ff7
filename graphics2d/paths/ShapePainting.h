// SPDX-License-Identifier: MIT
// Filling and stroking of one outline of points in user space. Internal.
#pragma once

#include "graphics2d/BoundsUnion.h"

namespace KAVO {
namespace Graphics2D {

// Fills the outline through the transform with the fill paint, and sets the bounds, empty when
// there is nothing to fill. False when the scratch stack is exhausted.
bool fillShape(MMContext2D& context, const MMPoint2D* points, uint32_t count, MMFillRule rule,
               BoundsUnion& bounds);

// Strokes or dashes the outline with the stroke paint and the given joins. Returns its bounds.
BoundsUnion strokeShape(MMContext2D& context, MMPoint2D* points, uint32_t count, bool closed,
                        uint8_t joinStyle);

} // namespace Graphics2D
} // namespace KAVO
