// SPDX-License-Identifier: MIT
// The context's own strip fillers: those of its level, and the few that have no others.
#include "graphics2d/LevelTable.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// Two of a pixel's four bytes, 16 bits apart, each of 128 or more counted one higher so that 255
// acts as 256.
inline uint32_t biasedPair(uint32_t pair)
{
    return pair + ((pair >> 7) & 0x00010001u);
}

} // namespace

void MMContext2D::drawSolidStrip()
{
    coloursOf(*this).opaque(*this);
}

void MMContext2D::drawSolidTStrip()
{
    coloursOf(*this).translucent(*this);
}

void MMContext2D::drawSolidXORStrip()
{
    const int32_t first = fixFloor(spanStart);
    const int32_t count = fixFloor(spanEnd) - first;
    const Pixel colour = currentPaint.paintColour;
    Pixel* pixels = spanPixels + first;
    for (int32_t i = 0; i < count; ++i)
        pixels[i] ^= colour;
}

void MMContext2D::drawPickingStrip()
{
    // Rows are compared exactly: a picking point between rows never hits.
    if (spanStart <= pickX && pickX <= spanEnd && pickY == fixFromInt(spanRow)) pickHit = 1;
}

void MMContext2D::drawTransStrip()
{
    const int32_t first = fixFloor(spanStart);
    const int32_t count = fixFloor(spanEnd) - first;
    const uint32_t weight = currentPaint.paintOpacity;
    const Pixel colour = currentPaint.paintColour;
    const uint32_t source02 = biasedPair(colour & 0x00FF00FFu) * weight;
    const uint32_t source13 = biasedPair((colour >> 8) & 0x00FF00FFu) * weight;
    const Pixel source = ((source02 >> 8) & 0xFFFF00FFu) | (source13 & 0xFF00FF00u);
    Pixel* pixels = spanPixels + first;
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t rest02 = biasedPair(pixels[i] & 0x00FF00FFu) * (255 - weight);
        const uint32_t rest13 = biasedPair((pixels[i] >> 8) & 0x00FF00FFu) * (255 - weight);
        pixels[i] = (((rest02 >> 8) & 0xFFFF00FFu) | (rest13 & 0xFF00FF00u)) + source;
    }
}

void MMContext2D::drawLinearGradientStrip()
{
    level->linearGradient.opaque(*this);
}

void MMContext2D::drawLinearGradientTStrip()
{
    level->linearGradient.translucent(*this);
}

void MMContext2D::drawRadialGradientStrip()
{
    level->radialGradient.opaque(*this);
}

void MMContext2D::drawRadialGradientTStrip()
{
    level->radialGradient.translucent(*this);
}

void MMContext2D::drawPatternStrip()
{
    level->patterns[kFilterNearest].opaque(*this);
}

void MMContext2D::drawPatternTStrip()
{
    level->patterns[kFilterNearest].translucent(*this);
}

void MMContext2D::drawBiLinPatternStrip()
{
    level->patterns[kFilterBilinear].opaque(*this);
}

void MMContext2D::drawBiLinPatternTStrip()
{
    level->patterns[kFilterBilinear].translucent(*this);
}

void MMContext2D::drawBiCubPatternStrip()
{
    level->patterns[kFilterBicubic].opaque(*this);
}

void MMContext2D::drawBiCubPatternTStrip()
{
    level->patterns[kFilterBicubic].translucent(*this);
}

void MMContext2D::drawSourceStrip()
{
    level->source.opaque(*this);
}

void MMContext2D::drawSourceTStrip()
{
    level->source.translucent(*this);
}

} // namespace Graphics2D
} // namespace KAVO
