// SPDX-License-Identifier: MIT
// Pixels are blended in lanes of 16 bits, as many at once as the level's registers hold. A mode
// gives the whole result for each channel times 255: products of two bytes, which are exact where
// the mode does not divide. The result's share, the share of it that hides the target and what that
// leaves of the target stay on this scale to 65025 and are rounded to a byte at the very end. All
// steps are monotone and act on alphas as on colours, so that no colour comes to exceed its alpha.
// Internal.
#pragma once

#include "graphics2d/masks/LevelBlending.h"

#include <type_traits>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

constexpr uint16_t kWholeResult = 255 * 255;

// As many pixels as are blended at once. One by one they would be too many kinds of loops.
using Pixels = std::conditional_t<(kLanes > 1), PixelVector, U32x4>;
using Lanes = decltype(widenLow(Pixels{}));
constexpr int32_t kPixels = sizeof(Pixels) / sizeof(Pixel);

struct Row {
    Pixel* target;
    const Pixel* layer;
    const uint8_t* levels; // or null
    uint32_t opacity;
    int32_t count;
    bool isClearSkipped;
};

inline Lanes same(uint32_t v)
{
    return Lanes{} + static_cast<uint16_t>(v);
}

// Channels are bytes; the signed comparison is one instruction everywhere.
inline Lanes clampedTo(Lanes alphas, Lanes channels)
{
    using Signed = decltype(alphas < channels);
    return (Lanes)((Signed)channels < (Signed)alphas ? (Signed)channels : (Signed)alphas);
}

// Pixels of the layer and of the target, none of the layer's channels above its alpha.
struct Operands {
    Lanes layer;
    Lanes layerAlpha;
    Lanes target;
    Lanes targetAlpha;
};

// Replaces a share, 65535 for all, of pixels of the target; the results are the high bytes.
template <class Mode>
Lanes blended(const Mode& mode, Lanes target, Lanes layer, Lanes share)
{
    const Lanes layerAlpha = alphasOf(layer);
    const Lanes result =
        mode.result({clampedTo(layerAlpha, layer), layerAlpha, target, alphasOf(target)});
    const Lanes added = mulHigh(result, share);
    const Lanes hidden = Mode::kHidesByAlpha ? alphasOf(added) : mulHigh(same(kWholeResult), share);
    // Up to three truncations of less than 1 are made up for by 2.
    const Lanes sum = added + mulHigh(target * 257, kWholeResult - hidden) + same(128 + 2);
    return sum + (sum >> 8); // by 255
}

// A row of a multiple of kPixels.
template <class Mode>
void blendVectors(const Mode& mode, const Row& of)
{
    const Row row = of; // a copy: a store of pixels may alias the other
    const Lanes opacity = same(row.opacity * 257);
    const bool isWhole = row.levels == nullptr && row.opacity == 255;
    for (int32_t i = 0; i < row.count; i += kPixels) {
        const Pixels layer = load<Pixels>(row.layer + i);
        if (row.isClearSkipped && isZero(layer >> 24)) continue;
        if (Mode::kReplaces && isWhole && isZero(~layer >> 24)) {
            store(row.target + i, layer);
            continue;
        }
        Lanes lowShare = opacity, highShare = opacity;
        if (row.levels != nullptr) {
            const Pixels pairs = levelsOf<Pixels>(row.levels + i) * 0x01010101u;
            lowShare = mulHigh((Lanes)twiceLow(pairs), opacity);
            highShare = mulHigh((Lanes)twiceHigh(pairs), opacity);
        }
        const Pixels target = load<Pixels>(row.target + i);
        store(row.target + i,
              narrowHighBytes(blended(mode, widenLow(target), widenLow(layer), lowShare),
                              blended(mode, widenHigh(target), widenHigh(layer), highShare)));
    }
}

// Draws a row of any length by blend(), which takes multiples of kPixels.
template <class Blend>
void blendPadded(const Row& row, Blend blend)
{
    if (row.count <= 0) return;
    Row part = row;
    part.count = row.count - row.count % kPixels;
    blend(part);
    if (part.count == row.count) return;
    const size_t rest = static_cast<size_t>(row.count - part.count);
    Pixel lastOfTarget[kPixels] = {};
    Pixel lastOfLayer[kPixels] = {};
    uint8_t lastLevels[kPixels] = {};
    std::memcpy(lastOfTarget, row.target + part.count, rest * sizeof(Pixel));
    std::memcpy(lastOfLayer, row.layer + part.count, rest * sizeof(Pixel));
    if (row.levels != nullptr) std::memcpy(lastLevels, row.levels + part.count, rest);
    blend({lastOfTarget, lastOfLayer, row.levels != nullptr ? lastLevels : nullptr, row.opacity,
           kPixels, row.isClearSkipped});
    std::memcpy(row.target + part.count, lastOfTarget, rest * sizeof(Pixel));
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
