// SPDX-License-Identifier: MIT
// What the translucent strip fillers share.
#include "graphics2d/strips/StripMachinery.h"

namespace KAVO {
namespace Graphics2D {

void packOpaque(const Channels* channels, Pixel* pixels, int32_t count)
{
    const U32x4 half = all4(kChannelHalf);
    for (int32_t i = 0; i < count; i += 4) {
        const U32x4 packed = packChannels(channels[i] + half, channels[i + 1] + half,
                                          channels[i + 2] + half, channels[i + 3] + half);
        if (i + 4 > count) return storeFew(pixels + i, packed, count - i);
        store4(pixels + i, packed);
    }
}

TranslucentRun::TranslucentRun(MMContext2D& context)
    : coverage(context), context_(context), pixels_(spanFirstPixel(context))
{
    const MMPixmap& target = context.target;
    const uint32_t lastRow = target.height != 0 ? target.height - 1u : 0u;
    targetEnd_ = reinterpret_cast<uintptr_t>(target.pixels) +
                 static_cast<uintptr_t>(lastRow) * target.rowBytes +
                 static_cast<uintptr_t>(target.width) * sizeof(Pixel);
}

bool TranslucentRun::takeTail()
{
    if (context_.spanTailCoverage <= 0) return false;
    coverage.restartAt(context_.spanTailCoverage);
    context_.spanTailCoverage = 0;
    return true;
}

void TranslucentRun::drawColour(Pixel colour, int32_t count)
{
    const int32_t alpha = alphaOf(colour);
    while (count > 0) {
        const int32_t length = coverage.isFlat() ? count : 1;
        drawFlat(colour, gradientWeight(coverage.current(), alpha), length);
        coverage.advance(length);
        count -= length;
    }
}

void TranslucentRun::drawPiece(const PaintPiece& piece, int32_t count)
{
    blend(
        piece.colours, [&](int32_t i) { return load4(piece.weights + i); }, count);
}

void TranslucentRun::drawFlat(Pixel colour, uint32_t weight, int32_t count)
{
    const int32_t pairs = pixelsWithNeighbour(count);
    int32_t i = 0;
    if (pairs >= 4)
        for (const FlatBlend blend(colour, weight); i + 4 <= pairs; i += 4)
            store4(pixels_ + i, blend(load4(pixels_ + i + 1)));
    for (; i < count; ++i)
        pixels_[i] = blendPixel(pixels_[i < pairs ? i + 1 : i], colour, weight);
    pixels_ += count;
}

} // namespace Graphics2D
} // namespace KAVO
