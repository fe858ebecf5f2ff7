// SPDX-License-Identifier: MIT
// The colour stops of a gradient as its strip fillers read them, and where the fillers draw to.
// Internal.
#pragma once

#include "graphics2d/strips/StripMachinery.h"

namespace KAVO {
namespace Graphics2D {

// Stops of the current paint. Offsets should ascend, but any values are safe.
struct StopList {
    const Pixel* colours;
    const Fixed* offsets;
    uint32_t count;

    explicit StopList(const MMPaint& paint)
        : colours(paint.gradientStopColors), offsets(paint.gradientStopOffsets),
          count(paint.gradientStopCount)
    {
    }
    bool isEmpty() const { return count == 0 || colours == nullptr || offsets == nullptr; }
    Pixel firstColour() const { return colours[0]; }
    Pixel lastColour() const { return colours[count - 1]; }
    Fixed firstOffset() const { return offsets[0]; }
    Fixed lastOffset() const { return offsets[count - 1]; }
};

// The colours between two neighbouring stops.
struct Segment {
    Channels start;
    Channels difference;
    Fixed offset;
    Fixed length;

    Segment(const StopList& stops, uint32_t i);

    // The colour at a position of the gradient.
    Channels at(Fixed position) const;
};

// The current span as a gradient's walk fills it from left to right: opaquely, or blended by the
// coverage and the colours' alpha. Each gradient adds how it draws its ramp.
class GradientTarget {
public:
    GradientTarget(MMContext2D& context, bool translucent)
        : run_(context), pixels_(spanFirstPixel(context)), translucent_(translucent)
    {
    }

    // Draws count pixels of one colour, which keeps its alpha.
    void pad(Pixel colour, int32_t count);

    bool takeTail() { return translucent_ && run_.takeTail(); }

protected:
    TranslucentRun run_; // changes nothing in the context unless it is drawn with
    Pixel* pixels_;      // the next one, of an opaque target
    const bool translucent_;
};

} // namespace Graphics2D
} // namespace KAVO
