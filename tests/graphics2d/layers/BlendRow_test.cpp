// SPDX-License-Identifier: MIT
// Blend modes against their formulas in doubles, written as the standards write them: on colours
// that are not multiplied with their alpha.
#include "graphics2d/layers/BlendRow.h"

#include "graphics2d/LevelTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

using namespace KAVO;

namespace KAVO::Graphics2D {
namespace {

// As layers are blended.
void blend(MMBlendMode mode, Pixel* target, const Pixel* layer, const uint8_t* levels,
           uint32_t opacity, int32_t count)
{
    static const LevelTable* const level = MMContext2D().level;
    if (mode == kBlendNormal)
        level->blendNormal(target, layer, levels, opacity, count);
    else
        blendRow(mode, target, layer, levels, opacity, count);
}

using Rgb = std::array<double, 3>;

double lum(const Rgb& c)
{
    return 0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2];
}

double sat(const Rgb& c)
{
    return *std::max_element(c.begin(), c.end()) - *std::min_element(c.begin(), c.end());
}

Rgb setLum(Rgb c, double l)
{
    const double d = l - lum(c);
    for (double& v : c)
        v += d;
    const double grey = lum(c);
    const double n = *std::min_element(c.begin(), c.end());
    const double x = *std::max_element(c.begin(), c.end());
    for (double& v : c) {
        if (n < 0) v = grey + (v - grey) * grey / (grey - n);
        if (x > 1) v = grey + (v - grey) * (1 - grey) / (x - grey);
    }
    return c;
}

Rgb setSat(const Rgb& c, double s)
{
    const double n = *std::min_element(c.begin(), c.end());
    const double range = sat(c);
    Rgb result = {};
    for (size_t i = 0; i < 3; ++i)
        result[i] = range > 0 ? (c[i] - n) * s / range : 0;
    return result;
}

double hardLight(double b, double s)
{
    return s <= 0.5 ? b * 2 * s : b + (2 * s - 1) - b * (2 * s - 1);
}

double softLight(double b, double s)
{
    if (s <= 0.5) return b - (1 - 2 * s) * b * (1 - b);
    const double d = b <= 0.25 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
    return b + (2 * s - 1) * (d - b);
}

double mixed(MMBlendMode mode, double b, double s)
{
    switch (mode) {
    case kBlendMultiply:
        return b * s;
    case kBlendScreen:
        return b + s - b * s;
    case kBlendOverlay:
        return hardLight(s, b);
    case kBlendDarken:
        return std::min(b, s);
    case kBlendLighten:
        return std::max(b, s);
    case kBlendColourDodge:
        return b == 0 ? 0 : s == 1 ? 1 : std::min(1.0, b / (1 - s));
    case kBlendColourBurn:
        return b == 1 ? 1 : s == 0 ? 0 : 1 - std::min(1.0, (1 - b) / s);
    case kBlendHardLight:
        return hardLight(b, s);
    case kBlendSoftLight:
        return softLight(b, s);
    case kBlendDifference:
        return std::fabs(b - s);
    case kBlendExclusion:
        return b + s - 2 * b * s;
    default:
        return s;
    }
}

Rgb mixed(MMBlendMode mode, const Rgb& b, const Rgb& s)
{
    switch (mode) {
    case kBlendHue:
        return setLum(setSat(s, sat(b)), lum(b));
    case kBlendSaturation:
        return setLum(setSat(b, sat(s)), lum(b));
    case kBlendColour:
        return setLum(s, lum(b));
    case kBlendLuminosity:
        return setLum(b, lum(s));
    default:
        return {mixed(mode, b[0], s[0]), mixed(mode, b[1], s[1]), mixed(mode, b[2], s[2])};
    }
}

// The factors of the layer and of the target.
std::pair<double, double> factors(MMBlendMode mode, double as, double ab)
{
    switch (mode) {
    case kBlendClear:
        return {0, 0};
    case kBlendCopy:
        return {1, 0};
    case kBlendDestination:
        return {0, 1};
    case kBlendDestinationOver:
        return {1 - ab, 1};
    case kBlendSourceIn:
        return {ab, 0};
    case kBlendDestinationIn:
        return {0, as};
    case kBlendSourceOut:
        return {1 - ab, 0};
    case kBlendDestinationOut:
        return {0, 1 - as};
    case kBlendSourceAtop:
        return {ab, 1 - as};
    case kBlendDestinationAtop:
        return {1 - ab, as};
    case kBlendXor:
        return {1 - ab, 1 - as};
    default:
        return {1, 1}; // plus
    }
}

using Channels = std::array<double, 4>; // red, green, blue, alpha, 0 to 255

Channels channelsOf(Pixel p)
{
    return {double(p >> 16 & 255), double(p >> 8 & 255), double(p & 255), double(p >> 24)};
}

Channels model(MMBlendMode mode, Pixel target, Pixel layer, double share)
{
    const Channels b = channelsOf(target), s = channelsOf(layer);
    const double ab = b[3] / 255, as = s[3] / 255;
    Channels result = {};
    if (mode >= kBlendClear) {
        const auto [fs, fb] = factors(mode, as, ab);
        for (size_t k = 0; k < 4; ++k)
            result[k] = std::min(255.0, s[k] * fs + b[k] * fb);
    } else {
        Rgb cb = {}, cs = {};
        for (size_t k = 0; k < 3; ++k) {
            cb[k] = b[3] == 0 ? 0 : b[k] / b[3];
            cs[k] = s[3] == 0 ? 0 : s[k] / s[3];
        }
        const Rgb m = mixed(mode, cb, cs);
        for (size_t k = 0; k < 3; ++k)
            result[k] = s[k] * (1 - ab) + 255 * as * ab * m[k] + b[k] * (1 - as);
        result[3] = 255 * (as + ab - as * ab);
    }
    for (size_t k = 0; k < 4; ++k)
        result[k] = b[k] + (result[k] - b[k]) * share;
    return result;
}

Pixel randomPixel(std::mt19937& random)
{
    const uint32_t kind = random() % 4;
    const uint32_t alpha = kind == 0 ? 255 : kind == 1 ? random() % 4 : random() % 256;
    const auto channel = [&] {
        const uint32_t shape = random() % 8; // black, full, or the middle more often
        return shape == 0   ? 0
               : shape == 1 ? alpha
               : shape == 2 ? alpha / 2
                            : random() % (alpha + 1);
    };
    return alpha << 24 | channel() << 16 | channel() << 8 | channel();
}

TEST(BlendRow, IsTheFormulaOfEachModeRoundedOnce)
{
    std::mt19937 random(1);
    for (int mode = 0; mode <= kBlendPlus; ++mode)
        for (int round = 0; round < 8000; ++round) {
            const size_t count = 1 + random() % 40;
            const bool isEven = random() % 4 == 0; // long stretches alike
            std::vector<Pixel> target(count + 1), layer(count);
            std::vector<uint8_t> levels(count);
            for (size_t i = 0; i < count; ++i) {
                target[i] = randomPixel(random);
                layer[i] =
                    isEven && i > 0 && random() % 16 != 0 ? layer[i - 1] : randomPixel(random);
                levels[i] = static_cast<uint8_t>(random() % 3 == 0 ? 255 : random());
            }
            target[count] = 0x89ABCDEF;
            const uint32_t opacity = random() % 3 != 0 ? 255 : random() % 256;
            const bool masked = random() % 2 != 0;
            std::vector<Pixel> result = target;
            blend(static_cast<MMBlendMode>(mode), result.data(), layer.data(),
                  masked ? levels.data() : nullptr, opacity, static_cast<int32_t>(count));
            ASSERT_EQ(result[count], target[count]);
            for (size_t i = 0; i < count; ++i) {
                const double share = opacity / 255.0 * (masked ? levels[i] / 255.0 : 1);
                const Channels exact =
                    model(static_cast<MMBlendMode>(mode), target[i], layer[i], share);
                const Channels got = channelsOf(result[i]);
                for (size_t k = 0; k < 4; ++k) {
                    ASSERT_NEAR(got[k], exact[k], 0.6)
                        << "mode " << mode << std::hex << ", target " << target[i] << ", layer "
                        << layer[i] << ", share " << share;
                    ASSERT_LE(got[k], got[3]) << "mode " << mode << std::hex << ", target "
                                              << target[i] << ", layer " << layer[i];
                }
            }
        }
}

TEST(BlendRow, TakesAnyWords)
{
    std::mt19937 random(2);
    for (int mode = 0; mode < 256; ++mode) {
        std::vector<Pixel> target(64), layer(64);
        for (size_t i = 0; i < 64; ++i) {
            target[i] = random();
            layer[i] = random();
        }
        blend(static_cast<MMBlendMode>(mode), target.data(), layer.data(), nullptr, 255, 64);
    }
    // Over an alpha of 0 all modes of colours are normal, whatever the colour below.
    for (int mode = 0; mode <= kBlendLuminosity; ++mode) {
        Pixel target[] = {0x00FF8040, 0x00FF8040};
        const Pixel layer[] = {0xFF102030, 0x80402010};
        blend(static_cast<MMBlendMode>(mode), target, layer, nullptr, 255, 2);
        EXPECT_EQ(target[0], 0xFF102030u) << mode;
        EXPECT_EQ(target[1], 0x80BF6030u) << mode; // 127 of 255 of what is below shine through
    }
}

// Four transparent or opaque pixels take short cuts, and the last few of a row go another way: in
// memory of just the row's size, each pixel comes out as it does alone.
TEST(BlendRow, BlendsPixelsOfARowAsEachAlone)
{
    std::mt19937 random(3);
    for (int code = 0; code <= kBlendPlus + 1; ++code)
        for (size_t count = 0; count <= 20; ++count)
            for (const uint32_t alpha : {0u, 255u, 1u}) {
                const MMBlendMode mode = static_cast<MMBlendMode>(code);
                const size_t run = random() % (count + 1); // of transparent or of opaque pixels
                std::vector<Pixel> target(count), layer(count);
                std::vector<uint8_t> levels(count);
                for (size_t i = 0; i < count; ++i) {
                    target[i] = randomPixel(random);
                    layer[i] = i >= run     ? randomPixel(random)
                               : alpha == 1 ? 0
                                            : alpha << 24 | random() >> 8;
                    levels[i] = static_cast<uint8_t>(random());
                }
                const uint8_t* mask = alpha == 1 ? levels.data() : nullptr;
                std::vector<Pixel> row = target;
                blend(mode, row.data(), layer.data(), mask, 255, static_cast<int32_t>(count));
                for (size_t i = 0; i < count; ++i) {
                    Pixel alone = target[i];
                    blend(mode, &alone, &layer[i], mask != nullptr ? mask + i : nullptr, 255, 1);
                    ASSERT_EQ(row[i], alone)
                        << "mode " << code << ", pixel " << i << " of " << count << std::hex
                        << ", target " << target[i] << ", layer " << layer[i];
                }
            }
}

TEST(BlendRow, KnowsWhichModesActOutside)
{
    for (int code = 0; code <= kBlendPlus + 1; ++code) {
        const MMBlendMode mode = static_cast<MMBlendMode>(code);
        Pixel target = 0x80402010;
        const Pixel clear = 0;
        blend(mode, &target, &clear, nullptr, 255, 1);
        EXPECT_EQ(target != 0x80402010, actsOutside(mode)) << code;
    }
}

} // namespace
} // namespace KAVO::Graphics2D
