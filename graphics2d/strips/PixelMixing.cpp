// SPDX-License-Identifier: MIT
#include "graphics2d/strips/PixelMixing.h"

#include "graphics2d/strips/Blending.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

template <class Rule>
void mixPixels(const Pixel* from, const Pixel* to, const uint32_t* weights, ptrdiff_t step,
               Pixel alphaBits, Pixel* out, int32_t count)
{
    for (int32_t i = 0; i < count; i += kLanes, weights += step) {
        const auto weight = load<PixelVector>(weights);
        const auto colours = load<PixelVector>(from + i), others = load<PixelVector>(to + i);
        PixelVector mixed;
        if constexpr (kLanes > 1)
            mixed = blendPairs<Rule>(colours, others, weight);
        else
            mixed = blendPixel<Rule>(colours, others, weight & 0xFFFF);
        mixed |= alphaBits;
        if (i + kLanes > count) return storeFew(out + i, mixed, count - i);
        store(out + i, mixed);
    }
}

} // namespace

MixPixels mixerOf(bool refined)
{
    return refined ? mixPixels<RefinedBlend> : mixPixels<ClassicBlend>;
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
