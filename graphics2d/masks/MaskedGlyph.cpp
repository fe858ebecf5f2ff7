// SPDX-License-Identifier: MIT
#include "graphics2d/masks/MaskedGlyph.h"

#include "graphics2d/masks/LevelBlending.h"

namespace KAVO {
namespace Graphics2D {

void drawGlyphIntoMask(const MMContext2D& context, const GlyphRow& glyph, uint16_t opacity)
{
    uint8_t* levels = maskRow(*context.maskTarget, glyph.row) + glyph.column;
    const uint8_t* clip = context.clipMask != nullptr
                              ? maskRow(*context.clipMask, glyph.row) + glyph.column
                              : nullptr;
    for (int32_t i = 0; i < glyph.count; ++i) {
        const int32_t place = i + (glyph.startsLow ? 1 : 0);
        const uint32_t pair = glyph.bytes[place / 2];
        const uint32_t level = (place % 2 == 0 ? pair >> 4 : pair & 15) * 17;
        uint32_t coverage = level << 8; // 8.8
        coverage = (coverage * opacity + 0x7F80) / 0xFF00;
        if (clip != nullptr) coverage = shareOfLevel(coverage, clip[i]);
        addLevel(levels[i], coverage);
    }
}

} // namespace Graphics2D
} // namespace KAVO
