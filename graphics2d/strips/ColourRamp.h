// SPDX-License-Identifier: MIT
// A colour that changes by a constant per pixel. Internal.
#pragma once

#include "graphics2d/strips/Channels.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// One channel of one vector of pixels after the other.
struct ChannelRamp {
    PixelVector value;
    PixelVector step;

    // The values are half a unit of the byte higher, so that cutting them rounds to nearest.
    ChannelRamp(Channels channels, Channels steps, int k)
        : value(channels[k] + kChannelHalf + steps[k] * kPlaces),
          step(all<PixelVector>(steps[k] * kLanes))
    {
    }
    PixelVector next()
    {
        const PixelVector now = value;
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
        const auto next = [&] { return opaquePixels(red.next(), green.next(), blue.next()); };
        for (; count >= kLanes; count -= kLanes, out += kLanes)
            store(out, next());
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

    // Writes the next count alphas, and with the last of them some that mean nothing, to the end of
    // a vector. All but the last call take whole vectors.
    void write(uint32_t* out, int32_t count)
    {
        for (int32_t i = 0; i < count; i += kLanes) {
            // Rounding may have led a little below 0.
            const PixelVector alpha = alpha_.next() - kChannelHalf;
            store(out + i, (alpha & ((alpha >> 31) - 1)) >> 8);
        }
    }

private:
    ChannelRamp alpha_;
};

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
