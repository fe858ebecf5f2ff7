// SPDX-License-Identifier: MIT
// Colours stay premultiplied: a mix of d / da and s / sa is worked out times da * sa, so that only
// the mode's own divisions remain, and products of four bytes are the largest numbers.
#include "graphics2d/layers/MixedPixel.h"

#include "graphics2d/layers/ChannelMixes.h"
#include "math/WideMath.h"

#include <algorithm>
#include <array>

namespace KAVO {
namespace Graphics2D {

namespace {

// --- Each channel by itself ---------------------------------------------------------------------

// The layer's channel s with its alpha, the target's d with its own; neither alpha is 0.
using ChannelMixer = uint32_t (*)(uint32_t s, uint32_t sa, uint32_t d, uint32_t da);

uint32_t dodge(uint32_t s, uint32_t sa, uint32_t d, uint32_t da)
{
    if (d == 0) return 0;
    if (s == sa) return sa * da;
    return std::min(sa * da, d * sa * sa / (sa - s));
}

uint32_t burn(uint32_t s, uint32_t sa, uint32_t d, uint32_t da)
{
    if (d == da) return sa * da;
    if (s == 0) return 0;
    return sa * da - std::min(sa * da, (da - d) * sa * sa / s);
}

// What soft light adds at its brightest: (lit - d) * da, 24.8.
uint32_t brightening(uint32_t d, uint32_t da)
{
    if (4 * d > da) // the root of d * da with eight bits of fraction
        return integerRoot(d * da << 16) - (d << 8);
    return ((16 * d * d + 3 * da * da - 12 * d * da) * d << 8) / (da * da);
}

uint32_t softLight(uint32_t s, uint32_t sa, uint32_t d, uint32_t da)
{
    if (2 * s <= sa) return d * sa - (sa - 2 * s) * d * (da - d) / da;
    return d * sa + ((2 * s - sa) * brightening(d, da) >> 8);
}

template <ChannelMixer mix>
void mixChannels(const uint16_t layer[4], const uint16_t target[4], uint16_t mixed[4])
{
    for (int k = 0; k < 3; ++k)
        mixed[k] = static_cast<uint16_t>(mix(layer[k], layer[3], target[k], target[3]));
}

// --- Colours as a whole -------------------------------------------------------------------------

using Colour = std::array<int32_t, 3>; // blue, green and red

Colour scaled(const uint16_t channels[4], int32_t factor)
{
    return {channels[0] * factor, channels[1] * factor, channels[2] * factor};
}

// length * part / whole of numbers up to 255 * 255, whose products fill 32 bits.
int32_t shareOf(int32_t length, int32_t part, int32_t whole)
{
    return static_cast<int32_t>(static_cast<uint32_t>(length) * static_cast<uint32_t>(part) /
                                static_cast<uint32_t>(whole));
}

int32_t leastOf(const Colour& colour)
{
    return std::min({colour[0], colour[1], colour[2]});
}

int32_t greatestOf(const Colour& colour)
{
    return std::max({colour[0], colour[1], colour[2]});
}

int32_t saturationOf(const Colour& colour)
{
    return greatestOf(colour) - leastOf(colour);
}

// Moves the least channel to 0 and the greatest to the saturation.
Colour withSaturation(Colour colour, int32_t saturation)
{
    const int32_t least = leastOf(colour);
    const int32_t range = saturationOf(colour);
    for (int32_t& c : colour)
        c = range == 0 ? 0 : shareOf(c - least, saturation, range);
    return colour;
}

// The weights 0.11, 0.59 and 0.3 are 65536 in all, so that no luminosity exceeds all channels.
int32_t luminosityOf(const Colour& colour)
{
    constexpr uint32_t kBlueWeight = 7209, kGreenWeight = 38666, kRedWeight = 19661;
    const uint32_t sum = static_cast<uint32_t>(colour[0]) * kBlueWeight +
                         static_cast<uint32_t>(colour[1]) * kGreenWeight +
                         static_cast<uint32_t>(colour[2]) * kRedWeight;
    return static_cast<int32_t>((sum + 0x8000) >> 16);
}

// Moves all channels alike, and where some leave 0 to `white`, draws all toward the luminosity. The
// channels lie no further than `white` apart, so that they leave it on one side only.
Colour withLuminosity(Colour colour, int32_t luminosity, int32_t white)
{
    const int32_t shift = luminosity - luminosityOf(colour);
    for (int32_t& c : colour)
        c += shift;
    const int32_t least = leastOf(colour);
    const int32_t greatest = greatestOf(colour);
    for (int32_t& c : colour) {
        if (least < 0) c = shareOf(luminosity, c - least, luminosity - least);
        if (greatest > white)
            c = white - shareOf(white - luminosity, greatest - c, greatest - luminosity);
    }
    return colour;
}

// Both pixels' colours times both alphas.
struct ScaledColours {
    ScaledColours(const uint16_t s[4], const uint16_t d[4])
        : layer(scaled(s, d[3])), target(scaled(d, s[3])), white(s[3] * d[3])
    {
    }

    Colour layer;
    Colour target;
    int32_t white;
};

using ColourMixer = Colour (*)(const ScaledColours& of);

Colour mixHue(const ScaledColours& of)
{
    return withLuminosity(withSaturation(of.layer, saturationOf(of.target)),
                          luminosityOf(of.target), of.white);
}

Colour mixSaturation(const ScaledColours& of)
{
    return withLuminosity(withSaturation(of.target, saturationOf(of.layer)),
                          luminosityOf(of.target), of.white);
}

Colour mixColour(const ScaledColours& of)
{
    return withLuminosity(of.layer, luminosityOf(of.target), of.white);
}

Colour mixLuminosity(const ScaledColours& of)
{
    return withLuminosity(of.target, luminosityOf(of.layer), of.white);
}

template <ColourMixer mix>
void mixColours(const uint16_t layer[4], const uint16_t target[4], uint16_t mixed[4])
{
    const Colour colour = mix(ScaledColours(layer, target));
    for (uint32_t k = 0; k < 3; ++k)
        mixed[k] = static_cast<uint16_t>(colour[k]);
}

PixelMixer plainMixerOf(MMBlendMode mode)
{
    if (kMixesLanes) return nullptr;
    switch (mode) {
    case kBlendMultiply:
        return mixChannels<multiply<uint32_t>>;
    case kBlendScreen:
        return mixChannels<screen<uint32_t>>;
    case kBlendOverlay:
        return mixChannels<overlay<uint32_t>>;
    case kBlendDarken:
        return mixChannels<darken<uint32_t>>;
    case kBlendLighten:
        return mixChannels<lighten<uint32_t>>;
    case kBlendHardLight:
        return mixChannels<hardLight<uint32_t>>;
    case kBlendDifference:
        return mixChannels<difference<uint32_t>>;
    case kBlendExclusion:
        return mixChannels<exclusion<uint32_t>>;
    default:
        return nullptr;
    }
}

} // namespace

PixelMixer pixelMixerOf(MMBlendMode mode)
{
    switch (mode) {
    case kBlendColourDodge:
        return mixChannels<dodge>;
    case kBlendColourBurn:
        return mixChannels<burn>;
    case kBlendSoftLight:
        return mixChannels<softLight>;
    case kBlendHue:
        return mixColours<mixHue>;
    case kBlendSaturation:
        return mixColours<mixSaturation>;
    case kBlendColour:
        return mixColours<mixColour>;
    case kBlendLuminosity:
        return mixColours<mixLuminosity>;
    default:
        return plainMixerOf(mode);
    }
}

} // namespace Graphics2D
} // namespace KAVO
