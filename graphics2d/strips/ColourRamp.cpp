// SPDX-License-Identifier: MIT
#include "graphics2d/strips/ColourRamp.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// One channel of one vector of pixels after the other.
struct ChannelRamp {
    PixelVector value;
    PixelVector step;

    // Where values are half a unit of the byte higher, cutting them rounds to nearest.
    ChannelRamp(const RampStart& ramp, int k, uint32_t more)
        : value(ramp.channels[k] + more + ramp.steps[k] * kPlaces),
          step(all<PixelVector>(ramp.steps[k] * kLanes))
    {
    }
    PixelVector next()
    {
        const PixelVector now = value;
        value += step;
        return now;
    }
};

} // namespace

void writeRamp(const RampStart& ramp, Pixel* out, uint32_t* alphas, int32_t count)
{
    if (alphas != nullptr) {
        ChannelRamp alpha(ramp, kAlpha, 0);
        for (int32_t i = 0; i < count; i += kLanes) {
            // Rounding may have led a little below 0.
            const PixelVector now = alpha.next();
            store(alphas + i, (now & ((now >> 31) - 1)) >> 8);
        }
    }
    ChannelRamp red(ramp, kRed, kChannelHalf);
    ChannelRamp green(ramp, kGreen, kChannelHalf);
    ChannelRamp blue(ramp, kBlue, kChannelHalf);
    const auto next = [&] { return opaquePixels(red.next(), green.next(), blue.next()); };
    for (; count >= kLanes; count -= kLanes, out += kLanes)
        store(out, next());
    if (count > 0) storeFew(out, next(), count);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
