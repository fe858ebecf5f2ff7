// SPDX-License-Identifier: MIT
// The current span as a gradient's walk fills it from left to right. Internal.
#pragma once

#include "graphics2d/strips/ColourRamp.h"
#include "graphics2d/strips/StopList.h"
#include "graphics2d/strips/TranslucentRun.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// Pixels are written opaquely, or blended by the coverage and the colours' alpha. Each gradient
// adds how it draws its ramp.
template <class Rule>
class GradientTarget {
public:
    GradientTarget(MMContext2D& context, bool translucent)
        : run_(context), pixels_(spanFirstPixel(context)), translucent_(translucent)
    {
    }

    // Draws count pixels of one colour, which keeps its alpha as far as the rule lets it.
    void pad(Pixel colour, int32_t count)
    {
        if (translucent_) return run_.drawColour(colour, count);
        fillPixels(pixels_, count, Rule::sourceOf(colour));
        pixels_ += count;
    }

    // Draws count pixels opaquely.
    void rampOpaque(ColourRamp& colours, int32_t count)
    {
        colours.write(pixels_, nullptr, count);
        pixels_ += count;
    }

    // Goes to where the next row is drawn opaquely.
    void goTo(Pixel* pixels) { pixels_ = pixels; }

    bool isTranslucent() const { return translucent_; }
    const LevelTable& level() const { return run_.level(); }

    bool takeTail() { return translucent_ && run_.takeTail(); }

protected:
    TranslucentRun<Rule> run_; // changes nothing in the context unless it is drawn with
    Pixel* pixels_;            // the next one, of an opaque target
    const bool translucent_;
};

// Whose ramps have the weight of each pixel's own alpha.
class RefinedGradientTarget : public GradientTarget<RefinedBlend> {
public:
    using GradientTarget::GradientTarget;

    // Draws count pixels. write(colours, alphas, length) gives the next opaque colours, at most
    // kPieceLength of them, and unless alphas is null their 8.8 alphas, for which there is room up
    // to the end of the widest vector.
    template <class Write>
    void ramp(int32_t count, Write write)
    {
        PaintPiece piece;
        while (count > 0) {
            const int32_t length = count < kPieceLength ? count : kPieceLength;
            if (translucent_) {
                write(piece.colours, piece.weights, length);
                weighAlphas(run_.level(), piece, run_.coverage, length);
                run_.drawPiece(piece, length);
            } else {
                write(pixels_, nullptr, length);
                pixels_ += length;
            }
            count -= length;
        }
    }
};

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
