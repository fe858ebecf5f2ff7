// SPDX-License-Identifier: MIT
// Strokes with the context's dash pattern. Internal.
#pragma once

#include "graphics2d/strokes/Stroker.h"

namespace KAVO {
namespace Graphics2D {

// As strokeSubpath, cut into dashes when the context has a dash array.
void strokeOrDashSubpath(MMContext2D& context, const DevicePen& pen, const MMLinkPath* records,
                         uint32_t recordCount, bool closed);

} // namespace Graphics2D
} // namespace KAVO
