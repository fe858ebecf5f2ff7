// SPDX-License-Identifier: MIT
#include "graphics2d/masks/LevelBlending.h"

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

// Replaces pixels by blended(pixels, others, levels), a vector at a time.
template <class Blended>
inline void blendByLevels(Pixel* pixels, const Pixel* others, const uint8_t* levels, int32_t count,
                          Blended blended)
{
    const auto few = [=](int32_t at) {
        return blended(load<FewPixels>(pixels + at), load<FewPixels>(others + at),
                       levelsOf<FewPixels>(levels + at));
    };
    // The last few overlap those before them, and come from what the pixels were.
    FewPixels last = {};
    const int32_t lastFew = count - kFewLanes;
    const bool overlaps = lastFew > 0 && count % kFewLanes != 0;
    if (overlaps) last = few(lastFew);
    int32_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        store(pixels + i, blended(load<PixelVector>(pixels + i), load<PixelVector>(others + i),
                                  levelsOf<PixelVector>(levels + i)));
    for (; i <= lastFew; i += kFewLanes)
        store(pixels + i, few(i));
    if (overlaps) return store(pixels + lastFew, last);
    if (i == count) return;
    Pixel lastPixels[kFewLanes] = {}, lastOthers[kFewLanes] = {};
    uint8_t lastLevels[kFewLanes] = {};
    std::copy_n(pixels, count, lastPixels);
    std::copy_n(others, count, lastOthers);
    std::copy_n(levels, count, lastLevels);
    storeFew(pixels,
             blended(load<FewPixels>(lastPixels), load<FewPixels>(lastOthers),
                     levelsOf<FewPixels>(lastLevels)),
             count);
}

// Levels are looked at in blocks: where they are alike, as in most of many masks, one weight is
// enough.
constexpr int32_t kBlock = 32;

// Whether the levels of a block are alike.
bool areAlike(const uint8_t* levels)
{
    const PixelVector pattern = all<PixelVector>(*levels * 0x01010101u);
    PixelVector others = {};
    for (int32_t i = 0; i < kBlock; i += static_cast<int32_t>(sizeof others)) {
        PixelVector some;
        std::memcpy(&some, levels + i, sizeof some);
        others |= some ^ pattern;
    }
    return isZero(others);
}

// Blends a colour over whole blocks of one level, of which there is at least one, as far as they
// go; returns how many pixels these are.
int32_t tintAlike(Pixel* pixels, Tint tint, const uint8_t* levels, int32_t count)
{
    const uint8_t level = *levels;
    const FlatBlend<RefinedBlend, PixelVector> blend(
        tint.source, refinedWeight(uint32_t{level} << 8, tint.opacity));
    int32_t i = 0;
    do {
        for (const int32_t end = i + kBlock; i < end; i += 2 * kLanes) {
            const PixelVector second = load<PixelVector>(pixels + i + kLanes);
            store(pixels + i, blend(load<PixelVector>(pixels + i)));
            store(pixels + i + kLanes, blend(second));
        }
    } while (i + kBlock <= count && levels[i] == level && areAlike(levels + i));
    return i;
}

} // namespace

void tintByLevels(Pixel* pixels, Tint tint, const uint8_t* levels, int32_t count)
{
    const auto blended = [=](auto from, auto, auto level) {
        const auto source = all<decltype(from)>(tint.source);
        return blendPixels<RefinedBlend>(from, source, weighedAlphas(level << 8, tint.opacity));
    };
    for (int32_t length; count > 0; pixels += length, levels += length, count -= length) {
        if (count >= kBlock && areAlike(levels)) {
            length = tintAlike(pixels, tint, levels, count);
        } else {
            length = std::min(count, kBlock);
            blendByLevels(pixels, pixels, levels, length, blended);
        }
    }
}

void moveByLevels(Pixel* pixels, const Pixel* drawn, const uint8_t* levels, int32_t count)
{
    blendByLevels(pixels, drawn, levels, count,
                  [](auto from, auto to, auto level) { return movedByLevels(from, to, level); });
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
