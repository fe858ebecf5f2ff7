// SPDX-License-Identifier: MIT
// How rows of a glyph image are blended into the target, at each level of the processor. Internal.
//
// By the classic rules a pixel's background is its right-hand neighbour, which is read right of the
// last pixel as well; by the refined ones it is the pixel itself.
#pragma once

#include "graphics2d/LevelTable.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_NARROW_LEVEL {

void blendClassicColour(const GlyphRows& glyph);
void blendRefinedColour(const GlyphRows& glyph);
void blendClassicPixels(const GlyphRows& glyph);
void blendRefinedPixels(const GlyphRows& glyph); // premultiplied

} // namespace MM2D_NARROW_LEVEL
} // namespace Graphics2D
} // namespace KAVO
