// SPDX-License-Identifier: MIT
// How a weight moves a pixel of the target toward a source pixel, by either mode's rules. Internal.
//
// Pixels are 0xAARRGGBB, and all four channels are moved alike. Each rule comes for one pixel, for
// a vector of them, and, in FlatBlending.h, for many pixels of one colour and weight.
#pragma once

#include "graphics2d/strips/PixelLanes.h"
#include "math/FixedInline.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

constexpr Pixel kOpaque = 0xFF000000; // the alpha of a pixel that hides its background

// Two of a pixel's four channels, 16 bits apart.
constexpr uint32_t kEvenChannels = 0x00FF00FFu;

// One pixel by a rule of those below.
template <class Rule>
inline Pixel blendPixel(Pixel destination, Pixel source, uint32_t weight)
{
    return Rule::pair(destination & kEvenChannels, source & kEvenChannels, weight) |
           Rule::pair((destination >> 8) & kEvenChannels, (source >> 8) & kEvenChannels, weight)
               << 8;
}

// A pixel's colour multiplied with its alpha, rounded.
inline Pixel premultiplied(Pixel pixel)
{
    const auto product = [pixel](uint32_t pair) {
        const uint32_t share = pair * (pixel >> 24) + 0x00800080u;
        return ((share + (share >> 8 & kEvenChannels)) >> 8) & kEvenChannels;
    };
    const Pixel even = product(pixel & kEvenChannels);
    const Pixel odd = product((pixel >> 8 & 0xFF) | 0x00FF0000u); // alpha times 255 by 255
    return even | odd << 8;
}

// --- Lanes ---------------------------------------------------------------------------------------

// Blends a vector of pixels by pairs of the same weight. move(from, to, weights) moves the channels
// of half of them and leaves them in the high bytes.
template <class Pixels, class Move>
inline Pixels blendByPairs(Pixels destination, Pixels source, Pixels pairs, Move move)
{
    using Lanes = decltype(widenLow(pairs));
    return narrowHighBytes(
        move(widenLow(destination), widenLow(source), (Lanes)twiceLow(pairs)),
        move(widenHigh(destination), widenHigh(source), (Lanes)twiceHigh(pairs)));
}

// The same by weights.
template <class Pixels, class Move>
inline Pixels blendLanes(Pixels destination, Pixels source, Pixels weights, Move move)
{
    return blendByPairs(destination, source, inBothHalves(weights), move);
}

// The high bytes of both: of even channels and of odd ones.
template <class Lanes>
inline Lanes joinHighBytes(Lanes even, Lanes odd)
{
#if defined(__ARM_NEON)
    return (Lanes)vsriq_n_u16((uint16x8_t)odd, (uint16x8_t)even, 8);
#else
    return even >> 8 | (odd & 0xFF00);
#endif
}

// A vector of pixels by pairs of the same weight and a rule of those below: the even channels and
// the odd ones, which need not be unpacked.
template <class Rule, class Pixels>
inline Pixels blendPairs(Pixels destination, Pixels source, Pixels pairs)
{
    using Lanes = decltype(widenLow(pairs));
    const Lanes weights = (Lanes)pairs;
    const Lanes evenFrom = (Lanes)destination & 0xFF, evenTo = (Lanes)source & 0xFF;
    const Lanes oddFrom = (Lanes)destination >> 8, oddTo = (Lanes)source >> 8;
#if defined(__AVX2__)
    if constexpr (Rule::kRounds && sizeof(Pixels) > sizeof(U32x4)) { // in fewer steps
        const Lanes even = evenFrom + mulRounded((evenTo - evenFrom) << 7, weights);
        const Lanes odd = oddFrom + mulRounded((oddTo - oddFrom) << 7, weights);
        return (Pixels)(even | odd << 8);
    }
#endif
    return (Pixels)joinHighBytes(Rule::move(evenFrom, evenTo, weights),
                                 Rule::move(oddFrom, oddTo, weights));
}

// A pixel or a vector of them by a rule of those below.
template <class Rule, class Pixels>
inline Pixels blendPixels(Pixels destination, Pixels source, Pixels weights)
{
    if constexpr (sizeof(Pixels) > sizeof(Pixel))
        return blendPairs<Rule>(destination, source, inBothHalves(weights));
    else
        return blendPixel<Rule>(destination, source, weights);
}

// What a weight of 256 would move channels by: the difference, one higher above 128.
template <class Lanes>
inline Lanes raisedDifference(Lanes from, Lanes to)
{
    using Signed = decltype(from < to);
    const Signed difference = (Signed)(to - from);
    return (Lanes)(difference - (Signed)(difference > 128)); // a true comparison is -1
}

// Moves channels by weight / 256; the results are the high bytes. This is the classic rule times
// 256: with d' the raised difference, from * 256 + d' * weight lies between 0 and 65535, so 16 bits
// that wrap on the way hold it exactly.
template <class Lanes>
inline Lanes moveToward(Lanes from, Lanes to, Lanes weight)
{
    return (from << 8) + raisedDifference(from, to) * weight;
}

// The same by the refined rule: from * (256 - weight) + to * weight + 128.
template <class Lanes>
inline Lanes moveRounded(Lanes from, Lanes to, Lanes weight)
{
    return (from << 8 | 128) + (to - from) * weight;
}

// Each channel of a premultiplied colour times the weight of its coverage, over what the colour's
// alpha leaves of the background. No channel exceeds its alpha, and that weight times the alpha is
// rounded to the nearest multiple of 255, so the sum stays below 2^16.
template <class Lanes>
inline Lanes movePremultiplied(Lanes from, Lanes colour, Lanes weight)
{
    const Lanes share = colour * weight;
    const Lanes hidden = mulHigh(alphasOf(share) + 128, Lanes{} + 257); // by 255
    return from * (256 - hidden) + (share + 128);
}

// Pixels by that rule.
template <class Pixels>
inline Pixels blendPremultiplied(Pixels destination, Pixels source, Pixels weights)
{
    return blendLanes(destination, source, weights, [](auto from, auto colour, auto weight) {
        return movePremultiplied(from, colour, weight);
    });
}

inline Pixel blendPremultiplied(Pixel destination, Pixel source, uint32_t weight)
{
    const uint32_t even = (source & kEvenChannels) * weight + 0x00800080u;
    const uint32_t odd = (source >> 8 & kEvenChannels) * weight + 0x00800080u;
    const uint32_t rest = 256 - ((odd >> 16) * 257 >> 16); // the rounding is in odd
    return (((destination & kEvenChannels) * rest + even) >> 8 & kEvenChannels) |
           (((destination >> 8 & kEvenChannels) * rest + odd) & ~kEvenChannels);
}

// --- The classic rule ----------------------------------------------------------------------------

// The low byte of a product, one higher from 128 on, so that the full 255 * 255 / 256 = 254 acts as
// 255.
inline uint32_t raisedByte(int32_t product)
{
    const uint32_t weight = static_cast<uint32_t>(product) & 0xFFu;
    return (weight + (weight >> 7)) & 0xFFu;
}

// The weight of a gradient's colour: the opacity times the 8.16 alpha, truncated.
inline uint32_t gradientWeight(Coverage opacity, int32_t alpha)
{
    return raisedByte(fixMulSHRInline(opacity, alpha, 24));
}

// A 16.16 weight as a byte, rounded; 256.0 wraps to 0.
inline uint32_t roundedWeight(int32_t weight)
{
    return static_cast<uint32_t>(wrapAdd(weight, 0x8000) >> 16) & 0xFFu;
}

// Weights are 0 to 255. The background of a pixel is its right-hand neighbour under gradients and
// patterns, and a colour keeps its own alpha, toward which the target's is moved.
struct ClassicBlend {
    static constexpr int32_t kBackground = 1; // pixels to the right
    static constexpr bool kRounds = false;

    // Moves two channels from the destination's values toward the source's by weight / 256,
    // rounding toward minus infinity. Differences above 128 get one extra weight, so that a weight
    // of 255 reaches the source exactly for large rises; falls reach it because the shift floors.
    static uint32_t pair(uint32_t destination, uint32_t source, uint32_t weight)
    {
        // Borrows between the lanes cancel out.
        const uint32_t difference = source - destination;
        // A lane holds 383 more than its difference: bit 9 is set when that is above 128.
        const uint32_t raised = ((difference + 0x017F017Fu) >> 9) & 0x10001u;
        // d * 256 + (s - d + raised) * w of each lane, which lies between 0 and 65535.
        return (((destination << 8) + (difference + raised) * weight) >> 8) & kEvenChannels;
    }

    // The same, with all that the colour and the weight decide apart from the rest.
    static uint32_t flatPair(uint32_t destination, uint32_t source, uint32_t weight)
    {
        const uint32_t limit = source + 0x017F017Fu, share = source * weight;
        const uint32_t raised = ((limit - destination) >> 9) & 0x10001u;
        return (destination * (256 - weight) + raised * weight + share) >> 8 & kEvenChannels;
    }

    template <class Lanes>
    static Lanes move(Lanes from, Lanes to, Lanes weight)
    {
        return moveToward(from, to, weight);
    }

    static Pixel sourceOf(Pixel colour) { return colour; }
    static uint32_t weightOf(Pixel colour, Coverage opacity)
    {
        return gradientWeight(opacity, static_cast<int32_t>(colour >> 24 << 16));
    }
};

// --- The refined rule ----------------------------------------------------------------------------

// 8.8 of a coverage, which has 16 fraction bits.
inline uint32_t coarseCoverage(Coverage coverage)
{
    return static_cast<uint32_t>(std::clamp(coverage, 0, 0x00FF0000)) >> 8;
}

constexpr uint32_t kWholeAlpha = 0xFF00; // 255 in 8.8

// The weight of 0 to 256 that a coverage and an alpha have together, both 8.8 on the scale to 255.
// This is the one rounding of opacity, coverage and alpha: a / 255 * c / 255 * 256 to nearest.
inline uint32_t refinedWeight(uint32_t coverage, uint32_t alpha)
{
    return ((coverage * alpha >> 16) + 127) * 258 >> 16;
}

// The same for lanes of 16 bits.
template <class Lanes>
inline Lanes refinedWeights(Lanes coverage, Lanes alpha)
{
    return mulHigh(mulHigh(coverage, alpha) + 127, Lanes{} + 258);
}

// The same for a vector of alphas.
template <class Pixels>
inline Pixels weighedAlphas(Pixels alphas, uint32_t coverage)
{
#if defined(__ARM_NEON) // multiplies whole words as well
    return ((alphas * coverage >> 16) + 127) * 258 >> 16;
#else
    using Lanes = decltype(widenLow(alphas)); // the upper halves are 0 and stay so
    return (Pixels)refinedWeights((Lanes)alphas, Lanes{} + static_cast<uint16_t>(coverage));
#endif
}

inline uint32_t weighedAlphas(uint32_t alpha, uint32_t coverage)
{
    return refinedWeight(coverage, alpha);
}

// Opacity and alpha, 0 to 255 each, in one, 8.8.
inline uint16_t opacityWith(uint32_t opacity, uint32_t alpha)
{
    return static_cast<uint16_t>((opacity * alpha * 256 + 127) / 255);
}

// Weights are 0 to 256. A pixel is blended over itself, rounded to nearest and monotonely, so that
// no channel of a premultiplied pixel comes to exceed its alpha; a colour's alpha is part of its
// weight, and moves the target's toward 255.
struct RefinedBlend {
    static constexpr int32_t kBackground = 0;
    static constexpr bool kRounds = true;

    static uint32_t pair(uint32_t destination, uint32_t source, uint32_t weight)
    {
        // Borrows between the lanes cancel out.
        return (((destination << 8) + (source - destination) * weight + 0x00800080u) >> 8) &
               kEvenChannels;
    }

    // The same, with all that the colour and the weight decide apart from the rest.
    static uint32_t flatPair(uint32_t destination, uint32_t source, uint32_t weight)
    {
        const uint32_t share = source * weight + 0x00800080u;
        return (destination * (256 - weight) + share) >> 8 & kEvenChannels;
    }

    template <class Lanes>
    static Lanes move(Lanes from, Lanes to, Lanes weight)
    {
        return moveRounded(from, to, weight);
    }

    static Pixel sourceOf(Pixel colour) { return colour | kOpaque; }
    static uint32_t weightOf(Pixel colour, Coverage opacity)
    {
        return refinedWeight(coarseCoverage(opacity), colour >> 24 << 8);
    }
};

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
