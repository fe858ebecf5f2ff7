// SPDX-License-Identifier: MIT
// Filling and stroking of one outline of points in user space. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

// Fills the outline through the transform with the fill paint. False when the scratch stack is
// exhausted.
bool fillShape(MMContext2D& context, const MMPoint2D* points, uint32_t count, MMFillRule rule);

// Strokes or dashes the outline with the stroke paint and the given joins.
void strokeShape(MMContext2D& context, MMPoint2D* points, uint32_t count, bool closed,
                 uint8_t joinStyle);

} // namespace Graphics2D
} // namespace KAVO
