// SPDX-License-Identifier: MIT
#include "graphics2d/strips/PieceBlending.h"

#include <cstring>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// All alphas of at least one colour combined by op, which takes pixels and vectors of them.
template <class Op>
uint32_t combinedAlphas(const Pixel* colours, int32_t count, Op op)
{
    PixelVector vector = all<PixelVector>(colours[0]);
    int32_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        vector = op(vector, load<PixelVector>(colours + i));
    Pixel lanes[kLanes];
    store(lanes, vector);
    Pixel common = lanes[0];
    for (int32_t k = 1; k < kLanes; ++k)
        common = op(common, lanes[k]);
    for (; i < count; ++i)
        common = op(common, colours[i]);
    return common >> 24;
}

// Whether every alpha of at least one colour is 255.
bool areOpaque(const Pixel* colours, int32_t count)
{
    if (colours[0] >> 24 != 0xFF) return false;
    return combinedAlphas(colours, count, [](auto a, auto b) { return a & b; }) == 0xFF;
}

bool areTransparent(const Pixel* colours, int32_t count)
{
    if (colours[0] >> 24 != 0) return false;
    return combinedAlphas(colours, count, [](auto a, auto b) { return a | b; }) == 0;
}

// Weights of the coverage alone, for a piece whose colours hold all else.
[[gnu::noinline]] void weighByCoverage(PaintPiece& piece, CoverageSequence& coverage, int32_t count)
{
    const uint32_t first = refinedWeight(coarseCoverage(coverage.current()), kWholeAlpha);
    const bool isFlat = coverage.isFlat();
    fillPixels(piece.weights, (count + kLanes - 1) & -kLanes, isFlat ? first : kWholeAlpha);
    if (isFlat)
        coverage.advance(count);
    else
        weighAlphas(piece, coverage, count);
}

void drawOpaque(TranslucentRun<RefinedBlend>& run, PaintPiece& piece, int32_t count)
{
    const uint32_t weight = refinedWeight(coarseCoverage(run.coverage.current()), kWholeAlpha);
    if (run.coverage.isFlat() && weight == 256) {
        std::memcpy(run.take(count), piece.colours, static_cast<size_t>(count) * sizeof(Pixel));
        run.coverage.advance(count);
        return;
    }
    weighByCoverage(piece, run.coverage, count);
    run.drawPiece(piece, count);
}

void drawPremultiplied(TranslucentRun<RefinedBlend>& run, PaintPiece& piece, int32_t count)
{
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
    if (run.coverage.isFlat()) {
        const uint32_t opacity = coarseCoverage(run.coverage.current());
        run.blendBy(count, [&](auto backgrounds, int32_t i) {
            const auto colours = load<decltype(backgrounds)>(piece.colours + i);
            return blendPixels<RefinedBlend>(backgrounds, colours | kOpaque,
                                             weighedAlphas(colours >> 24 << 8, opacity));
        });
        run.coverage.advance(count);
        return;
    }
    for (int32_t i = 0; i < count; i += kLanes) {
        const PixelVector colours = load<PixelVector>(piece.colours + i);
        store(piece.weights + i, colours >> 24 << 8);
        store(piece.colours + i, colours | kOpaque);
    }
    weighAlphas(piece, run.coverage, count);
    run.drawPiece(piece, count);
}

} // namespace

void blendRefined(TranslucentRun<RefinedBlend>& run, TexelAlpha alpha, PaintPiece& piece,
                  int32_t count)
{
    if (alpha == TexelAlpha::kMadeWhole || areOpaque(piece.colours, count))
        return drawOpaque(run, piece, count);
    if (areTransparent(piece.colours, count)) {
        run.take(count);
        run.coverage.advance(count);
        return;
    }
    if (alpha == TexelAlpha::kPremultiplied) return drawPremultiplied(run, piece, count);
    drawStraight(run, piece, count);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
