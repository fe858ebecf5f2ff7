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
inline void blendRow(Pixel* pixels, const Pixel* others, const uint8_t* levels, int32_t count,
                     Blended blended)
{
    int32_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        store(pixels + i, blended(load<PixelVector>(pixels + i), load<PixelVector>(others + i),
                                  levelsOf<PixelVector>(levels + i)));
    for (; i < count; i += kFewLanes) {
        Pixel lastPixels[kFewLanes] = {}, lastOthers[kFewLanes] = {};
        uint8_t lastLevels[kFewLanes] = {};
        const int32_t rest = std::min(count - i, kFewLanes);
        std::copy_n(pixels + i, rest, lastPixels);
        std::copy_n(others + i, rest, lastOthers);
        std::copy_n(levels + i, rest, lastLevels);
        storeFew(pixels + i,
                 blended(load<FewPixels>(lastPixels), load<FewPixels>(lastOthers),
                         levelsOf<FewPixels>(lastLevels)),
                 rest);
    }
}

// Levels are looked at in blocks: where they are alike, as in most of many masks, one weight is
// enough.
constexpr int32_t kBlock = 32;

// How many levels there are in the first blocks that are all alike.
int32_t alikeLevels(const uint8_t* levels, int32_t count)
{
    const uint64_t pattern = *levels * 0x0101010101010101u;
    int32_t i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        uint64_t words[4];
        std::memcpy(words, levels + i, sizeof words);
        if (((words[0] ^ pattern) | (words[1] ^ pattern) | (words[2] ^ pattern) |
             (words[3] ^ pattern)) != 0)
            break;
    }
    return i;
}

// Blends a colour over whole blocks of one level.
void tintAlike(Pixel* pixels, Tint tint, uint8_t level, int32_t count)
{
    const uint32_t weight = refinedWeight(uint32_t{level} << 8, tint.opacity);
    const auto blend = RefinedBlend::flat(tint.source, weight);
    for (int32_t i = 0; i < count; i += kLanes)
        store(pixels + i, blend(load<PixelVector>(pixels + i)));
}

} // namespace

void tintByLevels(Pixel* pixels, Tint tint, const uint8_t* levels, int32_t count)
{
    const auto blended = [=](auto from, auto, auto level) {
        const auto source = all<decltype(from)>(tint.source);
        return RefinedBlend::blend(from, source, weighedAlphas(level << 8, tint.opacity));
    };
    for (int32_t length; count > 0; pixels += length, levels += length, count -= length) {
        length = alikeLevels(levels, count);
        if (length > 0) {
            tintAlike(pixels, tint, *levels, length);
        } else {
            length = std::min(count, kBlock);
            blendRow(pixels, pixels, levels, length, blended);
        }
    }
}

void moveByLevels(Pixel* pixels, const Pixel* drawn, const uint8_t* levels, int32_t count)
{
    blendRow(pixels, drawn, levels, count,
             [](auto from, auto to, auto level) { return movedByLevels(from, to, level); });
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
