// SPDX-License-Identifier: MIT
// The radial gradient by the refined rules. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

void drawRefinedRadialGradient(MMContext2D& context, bool translucent);

} // namespace Graphics2D
} // namespace KAVO
