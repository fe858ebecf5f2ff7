// SPDX-License-Identifier: MIT
// Which characters the font can draw.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Svg {

// Whether the font has a glyph for a UTF-16 code unit, blank ones included. Changes the context's
// pen and bounds.
bool hasGlyph(KAVO::Graphics2D::MMContext2D& context, uint16_t character);

// Whether the font has a glyph for any character at all.
bool hasAnyGlyph(KAVO::Graphics2D::MMContext2D& context);

} // namespace Svg
} // namespace KAVO
