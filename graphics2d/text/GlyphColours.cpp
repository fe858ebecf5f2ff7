// SPDX-License-Identifier: MIT
// Glyphs in one colour.
#include "graphics2d/text/GlyphBlending.h"
#include "graphics2d/text/GlyphColumns.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

void blendClassicColour(const GlyphRows& glyph)
{
    blendRows<ClassicGlyphRule, true>(glyph, {});
}

void blendRefinedColour(const GlyphRows& glyph)
{
    blendRows<RefinedGlyphRule, true>(glyph, {});
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
