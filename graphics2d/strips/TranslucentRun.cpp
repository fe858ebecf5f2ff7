// SPDX-License-Identifier: MIT
// Blending source pixels into the current span.
#include "graphics2d/strips/TranslucentRun.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

void weighAlphas(const LevelTable& level, PaintPiece& piece, CoverageSequence& coverage,
                 int32_t count)
{
    if (coverage.isFlat()) {
        level.weighAlphas(piece.weights, coarseCoverage(coverage.current()), count);
        coverage.advance(count);
        return;
    }
    for (int32_t i = 0; i < count; ++i) {
        piece.weights[i] = refinedWeight(coarseCoverage(coverage.current()), piece.weights[i]);
        coverage.advance(1);
    }
}

template <class Rule>
TranslucentRun<Rule>::TranslucentRun(MMContext2D& context)
    : coverage(context), context_(context), pixels_(spanFirstPixel(context))
{
    const MMPixmap& target = context.target;
    const uint32_t lastRow = target.height != 0 ? target.height - 1u : 0u;
    targetEnd_ = reinterpret_cast<uintptr_t>(target.pixels) +
                 static_cast<uintptr_t>(lastRow) * target.rowBytes +
                 static_cast<uintptr_t>(target.width) * sizeof(Pixel);
}

template <class Rule>
bool TranslucentRun<Rule>::takeTail()
{
    if (context_.spanTailCoverage <= 0) return false;
    coverage.restartAt(context_.spanTailCoverage);
    context_.spanTailCoverage = 0;
    return true;
}

template <class Rule>
void TranslucentRun<Rule>::drawColour(Pixel colour, int32_t count)
{
    while (count > 0) {
        const int32_t length = coverage.isFlat() ? count : 1;
        blenders().flat(take(length), Rule::sourceOf(colour),
                        Rule::weightOf(colour, coverage.current()));
        coverage.advance(length);
        count -= length;
    }
}

template <class Rule>
void TranslucentRun<Rule>::drawPiece(const PaintPiece& piece, int32_t count)
{
    blenders().byWeights(take(count), piece.colours, piece.weights);
}

template class TranslucentRun<ClassicBlend>;
template class TranslucentRun<RefinedBlend>;

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
