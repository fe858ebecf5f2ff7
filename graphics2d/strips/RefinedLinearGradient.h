// SPDX-License-Identifier: MIT
// The linear gradient by the refined rules. Internal.
#pragma once

#include "graphics2d/Level.h"
#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

void drawRefinedLinearGradient(MMContext2D& context, bool translucent);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
