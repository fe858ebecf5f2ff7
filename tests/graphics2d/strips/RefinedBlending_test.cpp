// SPDX-License-Identifier: MIT
// Colours blended by the refined rules, against double precision.
#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/strips/FlatBlending.h"
#include "graphics2d/strips/StripDispatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

TEST(RefinedBlending, WeightsAreRoundedOnce)
{
    for (uint32_t coverage = 0; coverage <= kWholeAlpha; coverage += 15)
        for (uint32_t alpha = 0; alpha <= 255; ++alpha) {
            const double exact = coverage / 65280.0 * alpha / 255 * 256;
            const uint32_t weight = refinedWeight(coverage, alpha << 8);
            ASSERT_NEAR(weight, exact, 0.52) << coverage << " of " << alpha;
            const U16x8 eight = refinedWeights(all8(coverage), all8(alpha << 8));
            ASSERT_EQ(eight[0], weight) << coverage << " of " << alpha;
        }
    EXPECT_EQ(refinedWeight(kWholeAlpha, kWholeAlpha), 256u);
}

// All bytes over all bytes: rounded to nearest, monotone, and alike for one, four and many pixels.
TEST(RefinedBlending, MovesEveryByteTowardEveryByte)
{
    for (uint32_t weight = 0; weight <= 256; ++weight)
        for (uint32_t source = 0; source <= 255; source += weight % 8 == 0 ? 1 : 17) {
            const FlatBlend<RefinedBlend, PixelVector> flat(source * 0x01010101u, weight);
            uint32_t previous = 0;
            for (uint32_t byte = 0; byte <= 255; ++byte) {
                const uint32_t moved =
                    blendPixel<RefinedBlend>(byte << 16, source << 16, weight) >> 16;
                const double exact = byte + (source - double(byte)) * weight / 256;
                ASSERT_NEAR(moved, exact, 0.5) << byte << " to " << source << " by " << weight;
                ASSERT_GE(moved, previous);
                previous = moved;
                const U32x4 to = all4(source * 0x01010101u), from = all4(byte * 0x01010101u);
                ASSERT_EQ(blendPixels<RefinedBlend>(from, to, all4(weight))[1],
                          moved * 0x01010101u);
                ASSERT_EQ(firstOf<Pixel>(flat(firstOf<FewPixels>(from))), moved * 0x01010101u);
            }
        }
}

// Every alpha by every weight, under the brightest background: sums fill 16 bits and do not wrap.
TEST(RefinedBlending, MovesPremultipliedPixelsWithoutWrapping)
{
    for (uint32_t weight = 0; weight <= 256; ++weight)
        for (uint32_t alpha = 0; alpha <= 255; ++alpha)
            for (const uint32_t from : {0u, 1u, 128u, 254u, 255u}) {
                const Pixel under = from * 0x01010101u, over = alpha << 24 | alpha;
                const U32x4 moved = blendPremultiplied(all4(under), all4(over), all4(weight));
                ASSERT_EQ(blendPremultiplied(under, over, weight), moved[1]);
                const double share = weight / 256.0, rest = 1 - alpha / 255.0 * share;
                for (const int shift : {0, 8, 24}) {
                    const double own = shift == 8 ? 0 : alpha * share;
                    ASSERT_NEAR(moved[1] >> shift & 255, from * rest + own, 1.01)
                        << alpha << " by " << weight << " over " << from << ", bits " << shift;
                }
                ASSERT_LE(moved[1] & 255, moved[1] >> 24);
            }
}

// Layers of random colours, opacities and coverages, over an opaque target and over a cleared one,
// where the result is the premultiplied picture.
TEST(RefinedBlending, LayersStayCloseToExactOnes)
{
    constexpr int kWidth = 40;
    std::mt19937 random(11);
    const auto within = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    MMContext2D context;
    for (int round = 0; round < 3000; ++round) {
        const int layers = round % 3 == 0 ? 64 : 1;
        const Pixel ground = round % 2 == 0 ? 0 : static_cast<Pixel>(random()) | kOpaque;
        std::vector<Pixel> pixels(kWidth + 1, ground);
        std::array<double, 4> exact[kWidth + 1];
        for (auto& e : exact)
            for (int k = 0; k < 4; ++k)
                e[k] = ground >> (8 * k) & 0xFF;
        setTarget(context, pixels.data(), kWidth + 1, 1);
        context.spanPixels = pixels.data();
        for (int i = 0; i < layers; ++i) {
            MMPaint& paint = context.currentPaint;
            paint.paintColour = static_cast<Pixel>(random()) | (within(0, 2) == 0 ? kOpaque : 0);
            // Layers weaker than one level stick, which is left out.
            if (layers > 1) paint.paintColour |= 0xC0000000;
            paint.paintOpacity = static_cast<uint8_t>(within(layers > 1 ? 40 : 0, 255));
            const int first = within(0, kWidth - 1), count = within(1, kWidth - first);
            context.spanStart = first << 16;
            context.spanEnd = (first + count) << 16;
            double coverage[kWidth + 1] = {};
            if (within(0, 1) == 0) {
                drawSpan(context, chooseSpanFiller(context));
                std::fill_n(coverage + first, count, paint.paintOpacity);
            } else {
                const int most = paint.paintOpacity << 16;
                context.spanCoverage = within(most / 2, most);
                context.spanCoverageNext = within(most / 2, most);
                context.spanCoverageStep = (most - context.spanCoverageNext) / (count + 1);
                context.spanTailCoverage = within(most / 2, most);
                coverage[first] = context.spanCoverage / 65536.0;
                for (int x = 1; x < count; ++x)
                    coverage[first + x] =
                        (context.spanCoverageNext + (x - 1) * double(context.spanCoverageStep)) /
                        65536;
                coverage[first + count] = context.spanTailCoverage / 65536.0;
                chooseEdgeFiller(context)(context);
            }
            for (int x = 0; x <= kWidth; ++x) {
                const double weight = coverage[x] / 255 * (paint.paintColour >> 24) / 255;
                for (int k = 0; k < 4; ++k)
                    exact[x][k] +=
                        ((k < 3 ? paint.paintColour >> (8 * k) & 0xFF : 255) - exact[x][k]) *
                        weight;
            }
        }
        for (int x = 0; x <= kWidth; ++x) {
            const Pixel alpha = pixels[x] >> 24;
            for (int k = 0; k < 4; ++k) {
                const Pixel drawn = pixels[x] >> (8 * k) & 0xFF;
                ASSERT_NEAR(drawn, exact[x][k], layers > 1 ? 5 : 1)
                    << "round " << round << " at " << x << " channel " << k << " on " << ground;
                ASSERT_LE(drawn, alpha) << "round " << round << " at " << x;
            }
            ASSERT_TRUE(ground == 0 || alpha == 255) << "round " << round << " at " << x;
        }
    }
}

} // namespace
