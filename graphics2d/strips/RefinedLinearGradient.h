// SPDX-License-Identifier: MIT
// The linear gradient by the refined rules. Internal.
#pragma once

#include "graphics2d/Level.h"
#include "graphics2d/LevelTable.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// Draws the current span, and as it is in the rows below.
void drawRefinedLinearGradient(MMContext2D& context, bool translucent, const SpanRows& rows);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
