// SPDX-License-Identifier: MIT
#include "graphics2d/strips/PieceBlending.h"

#include <cstring>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// Whether at least one colour has this alpha, and all have.
[[gnu::noinline]] bool haveAlpha(const Pixel* colours, int32_t count, uint32_t alpha)
{
    const Pixel first = colours[0];
    if (first >> 24 != alpha) return false;
    PixelVector differences = {};
    int32_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        differences |= load<PixelVector>(colours + i) ^ first;
    Pixel lanes[kLanes];
    store(lanes, differences);
    Pixel difference = 0;
    for (const Pixel lane : lanes)
        difference |= lane;
    for (; i < count; ++i)
        difference |= colours[i] ^ first;
    return difference >> 24 == 0;
}

// Weights of the coverage alone, for a piece whose colours hold all else.
void weighByCoverage(PaintPiece& piece, CoverageSequence& coverage, int32_t count)
{
    const uint32_t first = refinedWeight(coarseCoverage(coverage.current()), kWholeAlpha);
    const bool isFlat = coverage.isFlat();
    fillPixels(piece.weights, (count + kLanes - 1) & -kLanes, isFlat ? first : kWholeAlpha);
    if (isFlat)
        coverage.advance(count);
    else
        weighAlphas(piece, coverage, count);
}

void drawPremultiplied(TranslucentRun<RefinedBlend>& run, PaintPiece& piece, int32_t count)
{
    if (haveAlpha(piece.colours, count, 0)) {
        run.take(count);
        run.coverage.advance(count);
        return;
    }
    weighByCoverage(piece, run.coverage, count);
    run.blendBy(count, [&](auto backgrounds, int32_t i) {
        using Pixels = decltype(backgrounds);
        return blendPremultiplied(backgrounds, load<Pixels>(piece.colours + i),
                                  load<Pixels>(piece.weights + i));
    });
}

// Colours with an alpha of their own that none of their channels has been multiplied with.
void drawStraight(TranslucentRun<RefinedBlend>& run, PaintPiece& piece, int32_t count)
{
    for (int32_t i = 0; i < count; i += kLanes) {
        const PixelVector colours = load<PixelVector>(piece.colours + i);
        store(piece.weights + i, colours >> 24 << 8);
        store(piece.colours + i, colours | kOpaque);
    }
    weighAlphas(piece, run.coverage, count);
    run.drawPiece(piece, count);
}

// Pixels of one coverage, 8.8.
template <class Pixels>
inline Pixels blendByAlpha(Pixels backgrounds, Pixels colours, uint32_t coverage)
{
#if defined(__AVX2__)
    if constexpr (sizeof(Pixels) == sizeof(U32x8)) {
        const U16x16 alphas = (U16x16)alphasInBothHalves(colours) << 8;
        const U16x16 weights = refinedWeights(U16x16{} + static_cast<uint16_t>(coverage), alphas);
        return blendPairs<RefinedBlend>(backgrounds, colours | kOpaque, (U32x8)weights);
    }
#endif
    return blendPixels<RefinedBlend>(backgrounds, colours | kOpaque,
                                     weighedAlphas(colours >> 24 << 8, coverage));
}

} // namespace

void blendByAlpha(TranslucentRun<RefinedBlend>& run, const Pixel* colours, int32_t count)
{
    const uint32_t coverage = coarseCoverage(run.coverage.current());
    const bool isWhole = refinedWeight(coverage, kWholeAlpha) == 256;
    run.coverage.advance(count);
    for (int32_t length; count > 0; colours += length, count -= length) {
        length = std::min(count, kPieceLength);
        if (isWhole && haveAlpha(colours, length, 0xFF))
            std::memcpy(run.take(length), colours, static_cast<size_t>(length) * sizeof(Pixel));
        else if (haveAlpha(colours, length, 0))
            run.take(length);
        else
            run.blendBy(length, [=](auto backgrounds, int32_t i) {
                return blendByAlpha(backgrounds, load<decltype(backgrounds)>(colours + i),
                                    coverage);
            });
    }
}

void blendRefined(TranslucentRun<RefinedBlend>& run, TexelAlpha alpha, PaintPiece& piece,
                  int32_t count)
{
    if (alpha == TexelAlpha::kPremultiplied && !haveAlpha(piece.colours, count, 0xFF))
        return drawPremultiplied(run, piece, count);
    if (run.coverage.isFlat()) return blendByAlpha(run, piece.colours, count);
    drawStraight(run, piece, count);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
