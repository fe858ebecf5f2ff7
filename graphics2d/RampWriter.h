// SPDX-License-Identifier: MIT
// A gradient's stops on their way into a paint: scaled, brought into order and cut. Internal.
#pragma once

#include "graphics2d/PaintSetup.h"

namespace KAVO {
namespace Graphics2D {

constexpr int64_t kGreatestOffset = 0x40000000; // of a stop, either way

constexpr uint32_t kNoAlpha = 256; // more than any

// The least alpha whose weight under the opacity is 128 or more, so that the classic fillers raise
// it by one; kNoAlpha when there is none.
uint32_t leastRaisedAlpha(uint32_t opacity);

// Collects stops in the caller's arrays, to which the paint is made to point.
class RampWriter {
public:
    RampWriter(MMPaint& paint, const GradientRamp& ramp);

    void add(Pixel colour, int64_t offset);

    // All stops, offset 0 at start and 1.0 at start + length. What lies between two stops is cut
    // into segments no longer than piece, and where the alpha reaches raisedAlpha.
    void addAll(const GradientStops& stops, int64_t start, int64_t length, int64_t piece,
                uint32_t raisedAlpha);

private:
    struct Stop {
        Pixel colour;
        int64_t offset;
    };

    void addBetween(Stop from, Stop to, int64_t piece, uint32_t raisedAlpha);
    void cut(Stop from, Stop to, int64_t piece);

    MMPaint& paint_;
    GradientRamp ramp_;
};

} // namespace Graphics2D
} // namespace KAVO
