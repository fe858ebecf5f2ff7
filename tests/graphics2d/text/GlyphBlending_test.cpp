// SPDX-License-Identifier: MIT
// Every level's blending of glyphs against the rules, pixel by pixel.
#include "graphics2d/LevelTable.h"
#include "graphics2d/strips/Blending.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using namespace KAVO;
using namespace KAVO::Graphics2D;

constexpr int32_t kMargin = 12; // around the box, in pixels, which must not change

// A product by 255 as the classic rules round it.
uint32_t by255(uint32_t product)
{
    const uint32_t t = product + 0x81;
    return ((t + (t >> 8)) >> 8) & 0xFF;
}

uint32_t scaled(uint32_t channel, uint32_t factor)
{
    return (channel + (channel >> 7)) * factor >> 8;
}

Pixel classicPixel(Pixel background, Pixel paint, uint32_t coverage)
{
    const uint32_t rest = 255 - by255((paint >> 24) * coverage);
    Pixel result = 0;
    for (uint32_t shift = 0; shift < 32; shift += 8) {
        const uint32_t sum =
            scaled(paint >> shift & 0xFF, coverage) + scaled(background >> shift & 0xFF, rest);
        result |= std::min(sum, 255u) << shift;
    }
    return result;
}

class Glyphs : public testing::TestWithParam<bool> {
protected:
    uint32_t random(uint32_t below) { return static_cast<uint32_t>(generator_()) % below; }

    // By the refined rules one whose channels do not exceed its alpha.
    Pixel randomPixel()
    {
        if (!GetParam()) return static_cast<Pixel>(generator_());
        const uint32_t alpha = random(3) == 0 ? 255 : random(256);
        return alpha << 24 | random(alpha + 1) << 16 | random(alpha + 1) << 8 | random(alpha + 1);
    }

    std::mt19937 generator_{5};
};

// By the refined rules or by the classic ones.
TEST_P(Glyphs, AreBlendedByTheRules)
{
    const bool refined = GetParam();
    const MMContext2D context;
    const GlyphBlenders& blenders =
        refined ? context.level->refinedGlyphs : context.level->classicGlyphs;
    for (int round = 0; round < 20000; ++round) {
        const int32_t width = 1 + static_cast<int32_t>(random(round % 4 == 0 ? 40 : 13));
        const int32_t height = 1 + static_cast<int32_t>(random(5));
        const bool flat = random(2) == 0, startsLow = random(2) == 0;
        const int32_t stride =
            (width + (startsLow ? 1 : 0) + 1) / 2 + static_cast<int32_t>(random(3));
        // Exactly as long as a record, so that the sanitizers see what is read behind it.
        std::vector<uint8_t> record(static_cast<size_t>(7 + stride * height));
        for (uint8_t& byte : record)
            byte = static_cast<uint8_t>(random(256));
        const int32_t rowPixels = width + 2 * kMargin;
        std::vector<Pixel> target(static_cast<size_t>(rowPixels * (height + 2)));
        for (Pixel& pixel : target)
            pixel = randomPixel();
        const int32_t paintRow = width + 4;
        std::vector<Pixel> paint(static_cast<size_t>(paintRow * height));
        for (Pixel& pixel : paint)
            pixel = randomPixel();
        if (flat && refined) paint[0] |= 0xFF000000;
        const uint32_t alpha = random(3) == 0 ? 255 : random(256);
        const uint16_t opacity = static_cast<uint16_t>(refined ? opacityWith(alpha, 255) : alpha);

        std::vector<Pixel> expected = target;
        const int32_t first = rowPixels + kMargin;
        for (int32_t i = 0; i < width * height; ++i) {
            const int32_t x = i % width, y = i / width, place = x + (startsLow ? 1 : 0);
            const uint32_t byte = record[static_cast<size_t>(7 + y * stride + place / 2)];
            const uint32_t level = place % 2 == 0 ? byte >> 4 : byte & 15;
            const Pixel source = paint[static_cast<size_t>(flat ? 0 : y * paintRow + x)];
            Pixel& pixel = expected[static_cast<size_t>(first + y * rowPixels + x)];
            if (refined) {
                const uint32_t weight = refinedWeight(level * 17 << 8, opacity);
                pixel = flat ? blendPixel<RefinedBlend>(pixel, source, weight)
                             : blendPremultiplied(pixel, source, weight);
            } else {
                const uint32_t coverage = by255(opacity * level * 17);
                pixel = flat ? blendPixel<ClassicBlend>((&pixel)[1], source, coverage)
                             : classicPixel((&pixel)[1], source, coverage);
            }
        }

        const GlyphRows rows = {target.data() + first,
                                rowPixels,
                                record.data() + 7,
                                stride,
                                startsLow,
                                width,
                                height,
                                paint.data(),
                                paintRow,
                                opacity};
        (flat ? blenders.colour : blenders.pixels)(rows);
        ASSERT_EQ(target, expected)
            << "round " << round << ": " << width << " x " << height
            << (flat ? " in one colour" : " in pixels") << (startsLow ? ", from a low half" : "");
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, Glyphs, testing::Bool(),
                         [](const auto& mode) { return mode.param ? "refined" : "classic"; });

} // namespace
