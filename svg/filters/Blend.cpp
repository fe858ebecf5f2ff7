// SPDX-License-Identifier: MIT
// The blend modes of CSS in 16 bits.
#include "svg/filters/Effect.h"
#include "svg/filters/Remembering.h"

#include <utility>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

constexpr int64_t kOne = 65535;

using Colour = std::array<int64_t, 3>; // not premultiplied, kOne is 1

int64_t product(int64_t a, int64_t b)
{
    return (a * b + kOne / 2) / kOne;
}

int64_t hardLight(int64_t below, int64_t above)
{
    if (2 * above <= kOne) return product(below, 2 * above);
    return below + 2 * above - kOne - product(below, 2 * above - kOne);
}

int64_t softLight(int64_t below, int64_t above)
{
    const double b = static_cast<double>(below) / kOne;
    const double a = static_cast<double>(above) / kOne;
    if (a <= 0.5) return std::llround(kOne * (b - (1 - 2 * a) * b * (1 - b)));
    const double d = b <= 0.25 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
    return std::llround(kOne * (b + (2 * a - 1) * (d - b)));
}

int64_t mixedChannel(MMBlendMode mode, int64_t below, int64_t above)
{
    switch (mode) {
    case kBlendMultiply:
        return product(below, above);
    case kBlendScreen:
        return below + above - product(below, above);
    case kBlendOverlay:
        return hardLight(above, below);
    case kBlendDarken:
        return std::min(below, above);
    case kBlendLighten:
        return std::max(below, above);
    case kBlendColourDodge:
        if (below == 0) return 0;
        return above == kOne ? kOne : std::min(kOne, below * kOne / (kOne - above));
    case kBlendColourBurn:
        if (below == kOne) return kOne;
        return above == 0 ? 0 : kOne - std::min(kOne, (kOne - below) * kOne / above);
    case kBlendHardLight:
        return hardLight(below, above);
    case kBlendSoftLight:
        return softLight(below, above);
    case kBlendDifference:
        return std::abs(below - above);
    case kBlendExclusion:
        return below + above - product(2 * below, above);
    default:
        return above;
    }
}

int64_t luminosity(const Colour& c)
{
    return (30 * c[0] + 59 * c[1] + 11 * c[2]) / 100;
}

int64_t saturation(const Colour& c)
{
    return *std::max_element(c.begin(), c.end()) - *std::min_element(c.begin(), c.end());
}

Colour withLuminosity(Colour c, int64_t wanted)
{
    const int64_t difference = wanted - luminosity(c);
    for (int64_t& channel : c)
        channel += difference;
    const int64_t light = luminosity(c);
    const int64_t least = *std::min_element(c.begin(), c.end());
    const int64_t most = *std::max_element(c.begin(), c.end());
    for (int64_t& channel : c) {
        if (least < 0) channel = light + (channel - light) * light / (light - least);
        if (most > kOne) channel = light + (channel - light) * (kOne - light) / (most - light);
    }
    return c;
}

Colour withSaturation(Colour c, int64_t wanted)
{
    const int64_t least = *std::min_element(c.begin(), c.end());
    const int64_t range = saturation(c);
    for (int64_t& channel : c)
        channel = range == 0 ? 0 : (channel - least) * wanted / range;
    return c;
}

Colour mixed(MMBlendMode mode, const Colour& below, const Colour& above)
{
    switch (mode) {
    case kBlendHue:
        return withLuminosity(withSaturation(above, saturation(below)), luminosity(below));
    case kBlendSaturation:
        return withLuminosity(withSaturation(below, saturation(above)), luminosity(below));
    case kBlendColour:
        return withLuminosity(above, luminosity(below));
    case kBlendLuminosity:
        return withLuminosity(below, luminosity(above));
    default:
        break;
    }
    Colour result;
    for (size_t i = 0; i < result.size(); ++i)
        result[i] = mixedChannel(mode, below[i], above[i]);
    return result;
}

class Blend : public Effect {
public:
    explicit Blend(MMBlendMode mode) : mode_(mode) {}

    PixelArea fills(const std::vector<PixelArea>& inputs, const PixelArea&) const override
    {
        return inputs[0].around(inputs[1]);
    }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const PixelArea& area = result.area();
        auto both = remembering<std::pair<Texel, Texel>>(
            [this](const auto& pair) { return blended(pair.first, pair.second); });
        for (int y = area.top; y < area.bottom; ++y) {
            Texel* texel = result.row(y);
            for (int x = area.left; x < area.right; ++x)
                *texel++ = both({inputs[0]->at(x, y), inputs[1]->at(x, y)});
        }
    }

private:
    Texel blended(const Texel& above, const Texel& below) const
    {
        const uint32_t a = above[kAlpha];
        const uint32_t b = below[kAlpha];
        if (a == 0) return below;
        if (b == 0) return above;
        Colour colourAbove;
        Colour colourBelow;
        for (size_t i = 0; i < kAlpha; ++i) {
            colourAbove[i] = separated(above[i], a);
            colourBelow[i] = separated(below[i], b);
        }
        const Colour colour = mixed(mode_, colourBelow, colourAbove);
        const uint16_t both = times(a, b);
        Texel result;
        result[kAlpha] = clamped(a + times(b, 65535 - a));
        for (size_t i = 0; i < kAlpha; ++i)
            result[i] = clamped(times(above[i], 65535 - b) + times(below[i], 65535 - a) +
                                times(clamped(colour[i]), both));
        return result;
    }

    MMBlendMode mode_;
};

} // namespace

EffectPointer makeBlend(MMBlendMode mode)
{
    return std::make_unique<Blend>(mode);
}

} // namespace Svg
} // namespace KAVO
