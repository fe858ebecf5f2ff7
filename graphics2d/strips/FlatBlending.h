// SPDX-License-Identifier: MIT
// Many pixels blended by one colour and weight. Internal.
#pragma once

#include "graphics2d/strips/Blending.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// A vector of pixels by either rule: d * (256 - w) + s * w + 128, or without the 128 but plus w
// where d lies 128 below the colour's channel. Takes shorter vectors as well.
template <class Rule, class Pixels>
class FlatBlend {
public:
    FlatBlend(Pixel colour, uint32_t weight)
        : raiseBelow_((Signed)widenLow(all<Pixels>(colour)) - 128), weight_(same(weight)),
          rest_(same(256 - weight)),
          share_(widenLow(all<Pixels>(colour)) * weight_ + same(Rule::kRounds ? 128 : 0))
    {
    }

    template <class Some>
    Some operator()(Some destination) const
    {
        return narrowHighBytes(moved(widenLow(destination)), moved(widenHigh(destination)));
    }

private:
    using Lanes = decltype(widenLow(Pixels{}));
    using Signed = decltype(Lanes{} < Lanes{});

    static Lanes same(uint32_t v) { return Lanes{} + static_cast<uint16_t>(v); }

    template <class Some>
    Some moved(Some from) const
    {
        const Some sum = from * firstOf<Some>(rest_) + firstOf<Some>(share_);
        if constexpr (Rule::kRounds) return sum;
        using SomeSigned = decltype(Some{} < Some{});
        const Some raised = (Some)(firstOf<SomeSigned>(raiseBelow_) > (SomeSigned)from);
        return sum + (raised & firstOf<Some>(weight_));
    }

    Signed raiseBelow_;
    Lanes weight_;
    Lanes rest_;
    Lanes share_;
};

// One pixel after the other.
template <class Rule>
class FlatBlend<Rule, Pixel> {
public:
    FlatBlend(Pixel colour, uint32_t weight) : colour_(colour), weight_(weight) {}

    Pixel operator()(Pixel destination) const
    {
        return moved(destination, colour_) | moved(destination >> 8, colour_ >> 8) << 8;
    }

private:
    uint32_t moved(uint32_t from, uint32_t to) const
    {
        return Rule::flatPair(from & kEvenChannels, to & kEvenChannels, weight_);
    }

    Pixel colour_;
    uint32_t weight_;
};

// Blends pixels from the second on over those that lie kBackground to their right, as far as whole
// vectors and then fewer pixels go; returns the index of the rest. A call, so that short spans need
// none of it, but one that the compiler sees: they need not save their registers for it.
template <class Rule, int32_t kBackground>
[[gnu::noinline]] int32_t blendFlat(Pixel* pixels, int32_t count, Pixel colour, uint32_t weight)
{
    const FlatBlend<Rule, PixelVector> blended(colour, weight);
    int32_t i = 1;
    for (; i + kLanes <= count; i += kLanes)
        store(pixels + i, blended(load<PixelVector>(pixels + i + kBackground)));
    for (; i + kFewLanes <= count; i += kFewLanes)
        store(pixels + i, blended(load<FewPixels>(pixels + i + kBackground)));
    return i;
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
