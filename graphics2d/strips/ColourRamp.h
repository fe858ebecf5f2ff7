// SPDX-License-Identifier: MIT
// A colour that changes by a constant per pixel. Internal.
#pragma once

#include "graphics2d/strips/Channels.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// One channel of four pixels after the other.
struct ChannelRamp {
    U32x4 value;
    U32x4 step;

    // The values are half a unit of the byte higher, so that cutting them rounds to nearest.
    ChannelRamp(Channels channels, Channels steps, int k)
        : value(all4(channels[k] + kChannelHalf) + steps[k] * U32x4{0, 1, 2, 3}),
          step(all4(steps[k] * 4))
    {
    }
    U32x4 next()
    {
        const U32x4 now = value;
        value += step;
        return now;
    }
};

// Written as opaque pixels, whatever its alpha.
class ColourRamp {
public:
    ColourRamp(Channels first, Channels step) : channels_(first), step_(step) {}

    // Writes the next count pixels.
    void write(Pixel* out, int32_t count)
    {
        ChannelRamp red(channels_, step_, kRed);
        ChannelRamp green(channels_, step_, kGreen);
        ChannelRamp blue(channels_, step_, kBlue);
        channels_ += step_ * static_cast<uint32_t>(count);
        const auto next = [&] {
            return 0xFF000000u | (red.next() & 0x00FF0000u) | ((green.next() >> 8) & 0x0000FF00u) |
                   ((blue.next() >> 16) & 0xFFu);
        };
        for (; count >= 4; count -= 4, out += 4)
            store4(out, next());
        if (count > 0) storeFew(out, next(), count);
    }

private:
    Channels channels_;
    Channels step_;
};

// Its alphas as 8.8.
class AlphaRamp {
public:
    AlphaRamp(Channels first, Channels step) : alpha_(first, step, kAlpha) {}

    // Writes the next count alphas, and with the last of them up to three that mean nothing. All
    // but the last call take a multiple of four.
    void write(uint32_t* out, int32_t count)
    {
        for (int32_t i = 0; i < count; i += 4) {
            // Rounding may have led a little below 0.
            const I32x4 alpha = (I32x4)(alpha_.next() - kChannelHalf);
            store4(out + i, (U32x4)(alpha & (alpha > 0)) >> 8);
        }
    }

private:
    ChannelRamp alpha_;
};

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
