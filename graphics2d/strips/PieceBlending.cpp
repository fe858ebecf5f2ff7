// SPDX-License-Identifier: MIT
#include "graphics2d/strips/PieceBlending.h"

#include <cstring>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// All alphas of at least one colour combined by op, which takes pixels and fours of them.
template <class Op>
uint32_t combinedAlphas(const Pixel* colours, int32_t count, Op op)
{
    U32x4 common = all4(colours[0]);
    int32_t i = 0;
    for (; i + 4 <= count; i += 4)
        common = op(common, load4(colours + i));
    Pixel all = op(op(common[0], common[1]), op(common[2], common[3]));
    for (; i < count; ++i)
        all = op(all, colours[i]);
    return all >> 24;
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
    const U32x4 weights = all4(isFlat ? first : kWholeAlpha);
    for (int32_t i = 0; i < count; i += 4)
        store4(piece.weights + i, weights);
    if (isFlat)
        coverage.advance(count);
    else
        weighAlphas(piece, coverage, count);
}

void blendOpaque(TranslucentRun<RefinedBlend>& run, PaintPiece& piece, int32_t count)
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

void blendPremultiplied(TranslucentRun<RefinedBlend>& run, PaintPiece& piece, int32_t count)
{
    weighByCoverage(piece, run.coverage, count);
    run.blendBy(count, [&](U32x4 backgrounds, int32_t i) {
        return blendLanes(backgrounds, load4(piece.colours + i), load4(piece.weights + i),
                          movePremultiplied);
    });
}

// Colours with an alpha of their own that none of their channels has been multiplied with.
void blendStraight(TranslucentRun<RefinedBlend>& run, PaintPiece& piece, int32_t count)
{
    for (int32_t i = 0; i < count; i += 4) {
        const U32x4 colours = load4(piece.colours + i);
        store4(piece.weights + i, colours >> 24 << 8);
        store4(piece.colours + i, colours | kOpaque);
    }
    weighAlphas(piece, run.coverage, count);
    run.drawPiece(piece, count);
}

} // namespace

bool areOpaque(const Pixel* colours, int32_t count)
{
    if (colours[0] >> 24 != 0xFF) return false;
    return combinedAlphas(colours, count, [](auto a, auto b) { return a & b; }) == 0xFF;
}

void blendRefined(TranslucentRun<RefinedBlend>& run, TexelAlpha alpha, PaintPiece& piece,
                  int32_t count)
{
    if (alpha == TexelAlpha::kMadeWhole || areOpaque(piece.colours, count))
        return blendOpaque(run, piece, count);
    if (areTransparent(piece.colours, count)) {
        run.take(count);
        run.coverage.advance(count);
        return;
    }
    if (alpha == TexelAlpha::kPremultiplied) return blendPremultiplied(run, piece, count);
    blendStraight(run, piece, count);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
