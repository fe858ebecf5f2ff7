// SPDX-License-Identifier: MIT
#include "graphics2d/strips/PieceBlending.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// Weights of the coverage alone, for a piece whose colours hold all else.
void weighByCoverage(const LevelTable& level, PaintPiece& piece, CoverageSequence& coverage,
                     int32_t count)
{
    const uint32_t first = refinedWeight(coarseCoverage(coverage.current()), kWholeAlpha);
    const bool isFlat = coverage.isFlat();
    fillPixels(piece.weights, (count + kLanes - 1) & -kLanes, isFlat ? first : kWholeAlpha);
    if (isFlat)
        coverage.advance(count);
    else
        weighAlphas(level, piece, coverage, count);
}

void drawPremultiplied(TranslucentRun<RefinedBlend>& run, PaintPiece& piece, int32_t count)
{
    if (run.level().haveAlpha(piece.colours, count, 0)) {
        run.take(count);
        run.coverage.advance(count);
        return;
    }
    weighByCoverage(run.level(), piece, run.coverage, count);
    run.level().blendPremultiplied(run.take(count), piece.colours, piece.weights);
}

// Colours with an alpha of their own that none of their channels has been multiplied with.
void drawStraight(TranslucentRun<RefinedBlend>& run, PaintPiece& piece, int32_t count)
{
    for (int32_t i = 0; i < count; i += kLanes) {
        const PixelVector colours = load<PixelVector>(piece.colours + i);
        store(piece.weights + i, colours >> 24 << 8);
        store(piece.colours + i, colours | kOpaque);
    }
    weighAlphas(run.level(), piece, run.coverage, count);
    run.drawPiece(piece, count);
}

} // namespace

void blendByAlpha(TranslucentRun<RefinedBlend>& run, const Pixel* colours, int32_t count)
{
    run.blenders().byAlpha(run.take(count), colours, coarseCoverage(run.coverage.current()));
    run.coverage.advance(count);
}

void blendRefined(TranslucentRun<RefinedBlend>& run, TexelAlpha alpha, PaintPiece& piece,
                  int32_t count)
{
    if (alpha == TexelAlpha::kPremultiplied && !run.level().haveAlpha(piece.colours, count, 0xFF))
        return drawPremultiplied(run, piece, count);
    if (run.coverage.isFlat()) return blendByAlpha(run, piece.colours, count);
    drawStraight(run, piece, count);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
