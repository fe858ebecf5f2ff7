// SPDX-License-Identifier: MIT
#include "svg/text/Glyphs.h"

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

bool hasGlyph(MMContext2D& context, uint16_t character)
{
    uint16_t text[] = {character, 0};
    MMFixedRegion box = {};
    const Fixed fontSize = context.fontSize;
    const uint8_t preserveSpace = context.preserveSpace;
    context.fontSize = kFixedOne; // the glyph is small, and is there for every size asked for
    context.preserveSpace = 1;
    context.getTextBBox(text, 0, 0, &box);
    context.fontSize = fontSize;
    context.preserveSpace = preserveSpace;
    return box.x0 <= box.x1; // a character without a glyph leaves the box empty
}

bool hasAnyGlyph(MMContext2D& context)
{
    for (uint32_t character = 1; character <= 0xFFFF; ++character)
        if (hasGlyph(context, static_cast<uint16_t>(character))) return true;
    return false;
}

} // namespace Svg
} // namespace KAVO
