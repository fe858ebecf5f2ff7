// SPDX-License-Identifier: MIT
// The colour stops of a gradient as its strip fillers read them. Internal.
#pragma once

#include "graphics2d/MMPaint.h"
#include "graphics2d/strips/Channels.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

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
    Fixed offset = 0;
    Fixed length = 0;

    Segment() = default; // none
    Segment(const StopList& stops, uint32_t i) { set(stops, i); }

    // Becomes the i-th one, in place: a copy would wait for what has just been written.
    void set(const StopList& stops, uint32_t i);

    // The part of the difference that a fraction stands for: as fixMul of each channel, which is a
    // plain product because the channels' differences are whole.
    Channels part(Fixed fraction) const
    {
        return (Channels)((I32x4)difference >> 16) * static_cast<uint32_t>(fraction);
    }

    // The colour at a position of the gradient.
    Channels at(Fixed position) const;
};

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
