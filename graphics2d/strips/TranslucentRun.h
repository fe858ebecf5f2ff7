// SPDX-License-Identifier: MIT
// The current span as the target of a translucent gradient or pattern. Internal.
//
// Paints work in pieces: they write up to kPieceLength source pixels and weights into a PaintPiece,
// as if they drew opaquely, and TranslucentRun blends the piece into the target. So the paint's own
// code knows nothing of backgrounds, and the blending nothing of paints.
#pragma once

#include "graphics2d/LevelTable.h"
#include "graphics2d/strips/Blending.h"
#include "graphics2d/strips/Span.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

constexpr int32_t kPieceLength = 128; // a multiple of any vector's

// Source pixels on their way into the target.
struct PaintPiece {
    Pixel colours[kPieceLength];
    uint32_t weights[kPieceLength]; // on the rule's scale
};

// Turns the 8.8 alphas of a piece, which stand in place of its weights, into the refined rule's
// weights, and moves the coverage on.
void weighAlphas(const LevelTable& level, PaintPiece& piece, CoverageSequence& coverage,
                 int32_t count);

// Pixels are drawn from left to right by one of the rules of Blending.h, and by the context's
// level. Where the background of a pixel would be the word past the end of the target's last row,
// the pixel reads itself.
template <class Rule>
class TranslucentRun {
public:
    explicit TranslucentRun(MMContext2D& context);
    ~TranslucentRun() { context_.spanCoverageNext = coverage.next(); }
    TranslucentRun(const TranslucentRun&) = delete;
    TranslucentRun& operator=(const TranslucentRun&) = delete;

    // True once when the span has a tail pixel, whose coverage is then the current one.
    bool takeTail();

    // Blends count pixels of one colour and its own alpha.
    void drawColour(Pixel colour, int32_t count);

    // Blends the first count pixels of a piece. The coverage is the caller's to advance.
    void drawPiece(const PaintPiece& piece, int32_t count);

    // The next count pixels, for a caller that blends them itself.
    BlendedRun take(int32_t count)
    {
        const BlendedRun taken = {pixels_, count, pixelsWithBackground(count)};
        pixels_ += count;
        return taken;
    }

    const LevelTable& level() const { return *context_.level; }
    const RunBlenders& blenders() const
    {
        return Rule::kRounds ? level().refinedRuns : level().classicRuns;
    }

    CoverageSequence coverage;

private:
    // count, or one less when the background of the last pixel lies past the target.
    int32_t pixelsWithBackground(int32_t count) const
    {
        if (Rule::kBackground == 0) return count;
        const bool atEnd = reinterpret_cast<uintptr_t>(pixels_ + count) == targetEnd_;
        return atEnd && count > 0 ? count - 1 : count;
    }

    MMContext2D& context_;
    Pixel* pixels_;
    uintptr_t targetEnd_;
};

extern template class TranslucentRun<ClassicBlend>;
extern template class TranslucentRun<RefinedBlend>;

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
