// SPDX-License-Identifier: MIT
// Entries of the rasterisers with 32-bit counts, for paths and strokes. Internal.
//
// The public operations take a 16-bit count; a path of 70,000 points must not wrap.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

// As MMContext2D::rasterPolygon, by the given fill rule instead of the context's.
void fillPolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count, MMFillRule rule);

// As MMContext2D::rasterMonotonePolygon.
void fillMonotonePolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count);

// As MMContext2D::rasterComplexPolygon.
void fillComplexPolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                        MMFillRule rule);

} // namespace Graphics2D
} // namespace KAVO
