// SPDX-License-Identifier: MIT
// Two pixels are blended at once, in eight lanes of 16 bits. A mode gives the whole result for each
// channel times 255: products of two bytes, which are exact where the mode does not divide. The
// result's share, the share of it that hides the target and what that leaves of the target stay on
// this scale to 65025 and are rounded to a byte at the very end. All steps are monotone and act on
// alphas as on colours, so that no colour comes to exceed its alpha.
#include "graphics2d/layers/BlendRow.h"

#include "graphics2d/layers/ChannelMixes.h"
#include "graphics2d/layers/MixedPixel.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint16_t kWhole = 255 * 255;

struct Row {
    Pixel* target;
    const Pixel* layer;
    const uint8_t* levels; // or null
    uint32_t opacity;
    int32_t count; // a multiple of four
    bool isClearSkipped;
};

// --- Lanes --------------------------------------------------------------------------------------

// The alphas of two pixels in all their lanes.
U16x8 alphasOf(U16x8 channels)
{
    return __builtin_shufflevector(channels, channels, 3, 3, 3, 3, 7, 7, 7, 7);
}

// Channels as bytes; the signed comparison is one instruction everywhere.
U16x8 clampedTo(U16x8 alphas, U16x8 channels)
{
    return (U16x8)((I16x8)channels < (I16x8)alphas ? (I16x8)channels : (I16x8)alphas);
}

// Two pixels of the layer and of the target, none of the layer's channels above its alpha.
struct Operands {
    U16x8 layer;
    U16x8 layerAlpha;
    U16x8 target;
    U16x8 targetAlpha;
};

// --- Modes --------------------------------------------------------------------------------------

// What mixes eight channels by a function of ChannelMixes.h.
template <U16x8 (*mix)(U16x8, U16x8, U16x8, U16x8)>
struct ByLanes {
    static U16x8 mixed(const Operands& of)
    {
        return mix(of.layer, of.layerAlpha, of.target, of.targetAlpha);
    }
};

// What is mixed a pixel at a time.
struct PixelByPixel {
    PixelMixer mixer;

    U16x8 mixed(const Operands& of) const
    {
        uint16_t layer[8], target[8], mixed[8];
        const U16x8 products = of.layerAlpha * of.targetAlpha;
        std::memcpy(layer, &of.layer, sizeof layer);
        std::memcpy(target, &of.target, sizeof target);
        std::memcpy(mixed, &products, sizeof mixed);
        for (int k = 0; k < 8; k += 4)
            if (mixed[k + 3] != 0) mixer(layer + k, target + k, mixed + k);
        U16x8 result;
        std::memcpy(&result, mixed, sizeof mixed);
        return result;
    }
};

// The layer's pixel with its colour mixed where the target is, which goes over the target.
template <class Mix>
struct OverTarget : Mix {
    static constexpr bool kHidesByAlpha = true;
    static constexpr bool kReplaces = false; // where the layer is opaque

    U16x8 result(Operands of) const
    {
        of.target = clampedTo(of.targetAlpha, of.target);
        return of.layer * (255 - of.targetAlpha) + Mix::mixed(of);
    }
};

struct Normal {
    static constexpr bool kHidesByAlpha = true;
    static constexpr bool kReplaces = true;

    static U16x8 result(const Operands& of) { return of.layer * 255; }
};

// How much an operator takes of a pixel, by the alpha of the other: bit 1 takes that alpha as the
// factor, and bit 0 what the factor lacks to 1.
enum PixelFactor : uint8_t {
    kTakeNothing = 0,
    kTakeAll = 1,
    kTakeInside = 2, // alpha
    kTakeOutside = 3 // 1 - alpha
};

struct PorterDuffFactors {
    PixelFactor ofLayer;
    PixelFactor ofTarget;
};

constexpr PorterDuffFactors kPorterDuffFactors[] = {
    {kTakeNothing, kTakeNothing}, // kBlendClear
    {kTakeAll, kTakeNothing},     // kBlendCopy
    {kTakeNothing, kTakeAll},     // kBlendDestination
    {kTakeOutside, kTakeAll},     // kBlendDestinationOver
    {kTakeInside, kTakeNothing},  // kBlendSourceIn
    {kTakeNothing, kTakeInside},  // kBlendDestinationIn
    {kTakeOutside, kTakeNothing}, // kBlendSourceOut
    {kTakeNothing, kTakeOutside}, // kBlendDestinationOut
    {kTakeInside, kTakeOutside},  // kBlendSourceAtop
    {kTakeOutside, kTakeInside},  // kBlendDestinationAtop
    {kTakeOutside, kTakeOutside}, // kBlendXor
    {kTakeAll, kTakeAll},         // kBlendPlus
};
static_assert(sizeof kPorterDuffFactors / sizeof *kPorterDuffFactors ==
                  kBlendPlus - kBlendClear + 1,
              "one for each operator");

bool isPorterDuff(MMBlendMode mode)
{
    return mode >= kBlendClear && mode <= kBlendPlus;
}

// All twelve, told apart by their factors.
class PorterDuff {
public:
    static constexpr bool kHidesByAlpha = false;
    static constexpr bool kReplaces = false;

    explicit PorterDuff(PorterDuffFactors factors)
        : layer_(factors.ofLayer), target_(factors.ofTarget)
    {
    }

    U16x8 result(const Operands& of) const
    {
        const U16x8 layer = of.layer * layer_.by(of.targetAlpha);
        return layer + lesser(of.target * target_.by(of.layerAlpha), kWhole - layer);
    }

private:
    struct Factor {
        explicit Factor(PixelFactor taken)
            : used(all8((taken & 2) != 0 ? 255 : 0)), flipped(all8((taken & 1) != 0 ? 255 : 0))
        {
        }
        U16x8 by(U16x8 alpha) const { return (alpha & used) ^ flipped; }

        U16x8 used;
        U16x8 flipped;
    };

    Factor layer_;
    Factor target_;
};

// --- Rows ---------------------------------------------------------------------------------------

// Replaces a share, 65535 for all, of two pixels of the target; the results are the high bytes.
template <class Mode>
U16x8 blendTwo(const Mode& mode, U16x8 target, U16x8 layer, U16x8 share)
{
    const U16x8 layerAlpha = alphasOf(layer);
    const U16x8 result =
        mode.result({clampedTo(layerAlpha, layer), layerAlpha, target, alphasOf(target)});
    const U16x8 added = mulHigh(result, share);
    const U16x8 hidden = Mode::kHidesByAlpha ? alphasOf(added) : mulHigh(all8(kWhole), share);
    // Up to three truncations of less than 1 are made up for by 2.
    const U16x8 sum = added + mulHigh(target * 257, kWhole - hidden) + all8(128 + 2);
    return sum + (sum >> 8); // by 255
}

constexpr uint64_t kBothAlphas = 0xFF000000FF000000u; // of two pixels

template <class Mode>
void blendFours(const Mode& mode, const Row& of)
{
    const Row row = of; // a copy: a store of pixels may alias the other
    const U16x8 opacity = all8(row.opacity * 257);
    const bool isWhole = row.levels == nullptr && row.opacity == 255;
    for (int32_t i = 0; i < row.count; i += 4) {
        uint64_t pairs[2];
        std::memcpy(pairs, row.layer + i, sizeof pairs);
        if (row.isClearSkipped && ((pairs[0] | pairs[1]) & kBothAlphas) == 0) continue;
        const U32x4 layer = load4(row.layer + i);
        if (Mode::kReplaces && isWhole && (pairs[0] & pairs[1] & kBothAlphas) == kBothAlphas) {
            store4(row.target + i, layer);
            continue;
        }
        U16x8 lowShare = opacity, highShare = opacity;
        if (row.levels != nullptr) {
            U32x4 spread = {};
            std::memcpy(&spread, row.levels + i, 4);
            spread = zipLowBytes(spread, spread);
            spread = zipLowBytes(spread, spread); // each level four times, and then times 257
            lowShare = mulHigh((U16x8)zipLowBytes(spread, spread), opacity);
            highShare = mulHigh((U16x8)zipHighBytes(spread, spread), opacity);
        }
        const U32x4 target = load4(row.target + i);
        store4(row.target + i,
               narrowHighBytes(blendTwo(mode, widenLow(target), widenLow(layer), lowShare),
                               blendTwo(mode, widenHigh(target), widenHigh(layer), highShare)));
    }
}

template <U16x8 (*mix)(U16x8, U16x8, U16x8, U16x8)>
void blendByLanes(const Row& row)
{
    blendFours(OverTarget<ByLanes<mix>>{}, row);
}

using RowBlender = void (*)(const Row& row);

// For the modes that are mixed eight channels at a time, otherwise null.
RowBlender laneBlenderOf(MMBlendMode mode)
{
    if (!kMixesLanes) return nullptr;
    switch (mode) {
    case kBlendMultiply:
        return blendByLanes<multiply<U16x8>>;
    case kBlendScreen:
        return blendByLanes<screen<U16x8>>;
    case kBlendOverlay:
        return blendByLanes<overlay<U16x8>>;
    case kBlendDarken:
        return blendByLanes<darken<U16x8>>;
    case kBlendLighten:
        return blendByLanes<lighten<U16x8>>;
    case kBlendHardLight:
        return blendByLanes<hardLight<U16x8>>;
    case kBlendDifference:
        return blendByLanes<difference<U16x8>>;
    case kBlendExclusion:
        return blendByLanes<exclusion<U16x8>>;
    default:
        return nullptr;
    }
}

void blendFoursBy(MMBlendMode mode, const Row& row)
{
    if (isPorterDuff(mode))
        return blendFours(PorterDuff(kPorterDuffFactors[mode - kBlendClear]), row);
    if (const RowBlender blend = laneBlenderOf(mode)) return blend(row);
    if (const PixelMixer mixer = pixelMixerOf(mode))
        return blendFours(OverTarget<PixelByPixel>{{mixer}}, row);
    blendFours(Normal{}, row);
}

} // namespace

void blendRow(MMBlendMode mode, Pixel* target, const Pixel* layer, const uint8_t* levels,
              uint32_t opacity, int32_t count)
{
    if (count <= 0) return;
    const bool isClearSkipped = !actsOutside(mode);
    const int32_t fours = count & ~3;
    blendFoursBy(mode, {target, layer, levels, opacity, fours, isClearSkipped});
    if (fours == count) return;
    const size_t rest = static_cast<size_t>(count - fours);
    Pixel lastOfTarget[4] = {};
    Pixel lastOfLayer[4] = {};
    uint8_t lastLevels[4] = {};
    std::memcpy(lastOfTarget, target + fours, rest * sizeof(Pixel));
    std::memcpy(lastOfLayer, layer + fours, rest * sizeof(Pixel));
    if (levels != nullptr) std::memcpy(lastLevels, levels + fours, rest);
    blendFoursBy(mode, {lastOfTarget, lastOfLayer, levels != nullptr ? lastLevels : nullptr,
                        opacity, 4, isClearSkipped});
    std::memcpy(target + fours, lastOfTarget, rest * sizeof(Pixel));
}

} // namespace Graphics2D
} // namespace KAVO
