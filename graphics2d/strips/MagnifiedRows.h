// SPDX-License-Identifier: MIT
// Rows of upright, magnified images with bilinear sampling. Internal.
#pragma once

#include "graphics2d/Level.h"
#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

struct PatternFilter;

// Draws the context's current span of the pattern with the filter, which mixes four texels, in all
// of its rows. Returns false, and draws nothing, where the image is not upright and magnified.
bool drawMagnifiedRows(MMContext2D& context, const PatternFilter& filter);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
