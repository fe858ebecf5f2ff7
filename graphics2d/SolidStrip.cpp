// The basic strip fillers: solid colour, exclusive-or, picking and the two translucent solids.
#include "graphics2d/MMContext2D.h"
#include "graphics2d/StripMachinery.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// The eight-bit weight of a coverage, rounded; 256.0 wraps to 0.
inline uint32_t roundedWeight(Coverage coverage)
{
    return static_cast<uint32_t>(wrapAdd(coverage, 0x8000) >> 16) & 0xFFu;
}

// Blends fours of pixels from the index on with one coverage; returns the index of the rest.
int32_t blendFlat(Pixel* pixels, int32_t i, int32_t end, Pixel colour, Coverage coverage)
{
    const FlatBlend blend(colour, roundedWeight(coverage));
    for (; i + 4 <= end; i += 4)
        store4(pixels + i, blend(load4(pixels + i)));
    return i;
}

// Two of a pixel's four bytes, 16 bits apart, each of 128 or more counted one higher so that 255
// acts as 256.
inline uint32_t biasedPair(uint32_t pair)
{
    return pair + ((pair >> 7) & 0x00010001u);
}

} // namespace

void MMContext2D::drawSolidStrip()
{
    fillPixels(spanFirstPixel(*this), spanLength(*this), currentPaint.paintColour);
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

void MMContext2D::drawSolidTStrip()
{
    constexpr int32_t kLongSpan = 8;
    const int32_t count = spanLength(*this);
    const Pixel colour = currentPaint.paintColour;
    Pixel* pixels = spanFirstPixel(*this);
    if (count > 0) {
        const Coverage step = spanCoverageStep;
        const int32_t flatFrom = step == 0 && count >= kLongSpan ? 1 : count;
        Coverage coverage = spanCoverage;
        Coverage next = wrapSub(spanCoverageNext, step); // of the pixel before
        for (int32_t i = 0; i < count; ++i) {
            if (i == flatFrom) i = blendFlat(pixels, i, count, colour, coverage);
            if (i == count) break;
            pixels[i] = blendPixel(pixels[i], colour, roundedWeight(coverage));
            coverage = next = wrapAdd(next, step);
        }
        spanCoverageNext = next;
    }
    if (spanTailCoverage > 0) {
        Pixel& tail = spanPixels[fixFloor(spanEnd)];
        tail = blendPixel(tail, colour, roundedWeight(spanTailCoverage));
    }
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

} // namespace Graphics2D
} // namespace KAVO
