// SPDX-License-Identifier: MIT
// Levels are looked at in groups. Where those of a group are alike, as most are in many masks, the
// run of them is passed by or blended by one weight.
#include "graphics2d/masks/LevelBlending.h"

#include "graphics2d/masks/LevelRuns.h"
#include "graphics2d/strips/SolidStrip.h"
#include "graphics2d/strips/Span.h"

#include <algorithm>
#include <cstring>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// Moves pixels by level / 255.
template <class Pixels>
inline Pixels movedByLevels(Pixels from, Pixels to, Pixels levels)
{
    return blendLanes(from, to, levels, [](auto start, auto end, auto level) {
        const auto sum = start * (255 - level) + end * level + 128;
        return sum + (sum >> 8); // in the high bytes
    });
}

[[maybe_unused]] inline Pixel movedByLevels(Pixel from, Pixel to, uint32_t level)
{
    const auto moved = [level](uint32_t start, uint32_t end) {
        const uint32_t sum =
            (start & kEvenChannels) * (255 - level) + (end & kEvenChannels) * level + 0x00800080u;
        return (sum + (sum >> 8 & kEvenChannels)) >> 8 & kEvenChannels;
    };
    return moved(from, to) | moved(from >> 8, to >> 8) << 8;
}

#if defined(__AVX2__)
// The same by multiplying bytes in pairs: 255 - level and level with channels less 128, for these
// are signed.
inline PixelVector movedByLevels(PixelVector from, PixelVector to, PixelVector levels)
{
    const PixelVector shares = inBothHalves((levels << 8) + (255 - levels));
    const WideRegister start = (WideRegister)(from ^ 0x80808080u);
    const WideRegister end = (WideRegister)(to ^ 0x80808080u);
    const auto moved = [](PixelVector pairs, WideRegister channels) {
        const auto less = (WideLanes)MM2D_WIDE(maddubs_epi16)((WideRegister)pairs, channels);
        return (WideRegister)mulHigh(less + (255 * 128 + 128), WideLanes{} + 257); // by 255
    };
    return (PixelVector)MM2D_WIDE(packus_epi16)(
        moved(twiceLow(shares), MM2D_WIDE(unpacklo_epi8)(start, end)),
        moved(twiceHigh(shares), MM2D_WIDE(unpackhi_epi8)(start, end)));
}
#endif

// Toward other pixels.
struct MoveToDrawn {
    const Pixel* drawn;

    template <class Pixels>
    Pixels blended(Pixels from, int32_t i, Pixels levels) const
    {
        return movedByLevels(from, load<Pixels>(drawn + i), levels);
    }

    // Whole vectors by one level.
    void blendAlike(Pixel* pixels, int32_t i, int32_t end, uint8_t level) const
    {
        for (; i < end; i += kLanes)
            store(pixels + i, blended(load<PixelVector>(pixels + i), i, all<PixelVector>(level)));
    }
};

// Toward a colour.
struct MoveToColour {
    Tint tint;

    template <class Pixels>
    Pixels blended(Pixels from, int32_t, Pixels levels) const
    {
        return blendPixels<RefinedBlend>(from, all<Pixels>(tint.source),
                                         weighedAlphas(levels << 8, tint.opacity));
    }

    void blendAlike(Pixel* pixels, int32_t i, int32_t end, uint8_t level) const
    {
        const uint32_t weight = refinedWeight(uint32_t{level} << 8, tint.opacity);
        if (weight == 256) return fillPixels(pixels + i, end - i, tint.source);
        blendColour<RefinedBlend>({pixels + i, end - i, end - i}, tint.source, weight);
    }
};

constexpr int32_t kWord = 8; // levels
constexpr int32_t kGroup = std::max(kWord, kLanes);
constexpr int32_t kLeastRun = 3 * kGroup; // it takes time to find where a run ends

// Whether a group's levels are all this one.
bool isAlike(const uint8_t* levels, uint8_t level)
{
    uint64_t words[kGroup / kWord];
    std::memcpy(words, levels, sizeof words);
    uint64_t others = 0;
    for (const uint64_t word : words)
        others |= word ^ level * 0x0101010101010101u;
    return others == 0;
}

// Replaces pixels by what the move makes of them.
template <class Move>
inline void blendByLevels(Pixel* pixels, const uint8_t* levels, int32_t count, Move move)
{
    const auto blendAt = [=](int32_t i, auto lanes) {
        using Pixels = decltype(lanes);
        store(pixels + i, move.blended(load<Pixels>(pixels + i), i, levelsOf<Pixels>(levels + i)));
    };
    int32_t i = 0;
    while (count - i >= kGroup) {
        const uint8_t level = levels[i];
        const bool isOneLevel = isAlike(levels + i, level);
        const bool isRun =
            count - i >= kLeastRun && isOneLevel && isAlike(levels + i + 2 * kGroup, level);
        if (!isRun) {
            const bool isClear = isOneLevel && level == 0;
            for (int32_t k = 0; k < kGroup && !isClear; k += kLanes)
                blendAt(i + k, PixelVector{});
            i += kGroup;
            continue;
        }
        int32_t end = endOfLevel(levels, i + kGroup, count, level);
        if (level != 0) {
            end = i + ((end - i) & -kGroup);
            move.blendAlike(pixels, i, end, level);
        }
        i = end;
    }
    for (; count - i >= kFewLanes; i += kFewLanes)
        blendAt(i, FewPixels{});
    for (; i < count; ++i)
        blendAt(i, Pixel{});
}

} // namespace

void tintByLevels(Pixel* pixels, Tint tint, const uint8_t* levels, int32_t count)
{
    blendByLevels(pixels, levels, count, MoveToColour{tint});
}

void moveByLevels(Pixel* pixels, const Pixel* drawn, const uint8_t* levels, int32_t count)
{
    blendByLevels(pixels, levels, count, MoveToDrawn{drawn});
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
