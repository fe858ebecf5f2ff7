// SPDX-License-Identifier: MIT
// The blend modes. Those that mix each channel by sums and products do so in lanes.
#include "graphics2d/layers/BlendRow.h"

#include "graphics2d/layers/BlendLoop.h"
#include "graphics2d/layers/ChannelMixes.h"
#include "graphics2d/layers/MixedPixel.h"
#include "graphics2d/layers/NormalRow.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// --- Modes --------------------------------------------------------------------------------------

// What mixes channels by a function of ChannelMixes.h.
template <Lanes (*mix)(Lanes, Lanes, Lanes, Lanes)>
struct ByLanes {
    static Lanes mixed(const Operands& of)
    {
        return mix(of.layer, of.layerAlpha, of.target, of.targetAlpha);
    }
};

// What is mixed a pixel at a time.
struct PixelByPixel {
    PixelMixer mixer;

    Lanes mixed(const Operands& of) const
    {
        constexpr int kChannels = sizeof(Lanes) / sizeof(uint16_t);
        uint16_t layer[kChannels], target[kChannels], mixed[kChannels];
        const Lanes products = of.layerAlpha * of.targetAlpha;
        std::memcpy(layer, &of.layer, sizeof layer);
        std::memcpy(target, &of.target, sizeof target);
        std::memcpy(mixed, &products, sizeof mixed);
        for (int k = 0; k < kChannels; k += 4)
            if (mixed[k + 3] != 0) mixer(layer + k, target + k, mixed + k);
        Lanes result;
        std::memcpy(&result, mixed, sizeof mixed);
        return result;
    }
};

// The layer's pixel with its colour mixed where the target is, which goes over the target.
template <class Mix>
struct OverTarget : Mix {
    static constexpr bool kHidesByAlpha = true;
    static constexpr bool kReplaces = false; // where the layer is opaque

    Lanes result(Operands of) const
    {
        of.target = clampedTo(of.targetAlpha, of.target);
        return of.layer * (255 - of.targetAlpha) + Mix::mixed(of);
    }
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

    Lanes result(const Operands& of) const
    {
        const Lanes layer = of.layer * layer_.by(of.targetAlpha);
        return layer + lesser(of.target * target_.by(of.layerAlpha), kWholeResult - layer);
    }

private:
    struct Factor {
        explicit Factor(PixelFactor taken)
            : used(same((taken & 2) != 0 ? 255 : 0)), flipped(same((taken & 1) != 0 ? 255 : 0))
        {
        }
        Lanes by(Lanes alpha) const { return (alpha & used) ^ flipped; }

        Lanes used;
        Lanes flipped;
    };

    Factor layer_;
    Factor target_;
};

// --- Rows ---------------------------------------------------------------------------------------

template <Lanes (*mix)(Lanes, Lanes, Lanes, Lanes)>
void blendByLanes(const Row& row)
{
    blendVectors(OverTarget<ByLanes<mix>>{}, row);
}

using RowBlender = void (*)(const Row& row);

// For the modes that are mixed in lanes, otherwise null.
RowBlender laneBlenderOf(MMBlendMode mode)
{
    if (!kMixesLanes) return nullptr;
    switch (mode) {
    case kBlendMultiply:
        return blendByLanes<multiply<Lanes>>;
    case kBlendScreen:
        return blendByLanes<screen<Lanes>>;
    case kBlendOverlay:
        return blendByLanes<overlay<Lanes>>;
    case kBlendDarken:
        return blendByLanes<darken<Lanes>>;
    case kBlendLighten:
        return blendByLanes<lighten<Lanes>>;
    case kBlendHardLight:
        return blendByLanes<hardLight<Lanes>>;
    case kBlendDifference:
        return blendByLanes<difference<Lanes>>;
    case kBlendExclusion:
        return blendByLanes<exclusion<Lanes>>;
    default:
        return nullptr;
    }
}

void blendVectorsBy(MMBlendMode mode, const Row& row)
{
    if (isPorterDuff(mode))
        return blendVectors(PorterDuff(kPorterDuffFactors[mode - kBlendClear]), row);
    if (const RowBlender blend = laneBlenderOf(mode)) return blend(row);
    if (const PixelMixer mixer = pixelMixerOf(mode))
        return blendVectors(OverTarget<PixelByPixel>{{mixer}}, row);
    blendNormal(row.target, row.layer, row.levels, row.opacity, row.count);
}

} // namespace

void blendRow(MMBlendMode mode, Pixel* target, const Pixel* layer, const uint8_t* levels,
              uint32_t opacity, int32_t count)
{
    const bool isClearSkipped = !actsOutside(mode);
    blendPadded({target, layer, levels, opacity, count, isClearSkipped},
                [mode](const Row& row) { blendVectorsBy(mode, row); });
}

} // namespace Graphics2D
} // namespace KAVO
