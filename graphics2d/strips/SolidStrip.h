// SPDX-License-Identifier: MIT
// The fillers of solid colours, chosen by mode before any span is drawn. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

// As MMContext2D::drawSolidStrip and drawSolidTStrip, but for asking for the mode.
void drawClassicColour(MMContext2D& context);
void drawRefinedColour(MMContext2D& context);
void drawTranslucentClassicColour(MMContext2D& context);
void drawTranslucentRefinedColour(MMContext2D& context);

} // namespace Graphics2D
} // namespace KAVO
