// SPDX-License-Identifier: MIT
// Strokes with the context's dash pattern. Internal.
#pragma once

#include "graphics2d/strokes/Stroker.h"

namespace KAVO {
namespace Graphics2D {

// As strokeSubpath, cut into dashes when the context has a dash array. The bounds are those of the
// last dash, or of all with accumulateBounds.
BoundsUnion strokeOrDashSubpath(MMContext2D& context, const DevicePen& pen, const Subpath& subpath);

} // namespace Graphics2D
} // namespace KAVO
