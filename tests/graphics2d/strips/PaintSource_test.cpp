// SPDX-License-Identifier: MIT
// The paint that is a function: what the function is asked for, and how its pixels are blended.
#include "graphics2d/MMPaint.h"
#include "math/FixedLiteral.h"
#include "tests/support/TextScene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

constexpr int kSide = 300;

struct Call {
    int32_t row, column, count;
};

// A picture of the target's size, and what was asked of it.
struct Source {
    std::vector<Pixel> pixels = std::vector<Pixel>(kSide * kSide);
    mutable std::vector<Call> calls;

    static void write(const void* state, int32_t row, int32_t column, int32_t count, Pixel* to)
    {
        const Source& source = *static_cast<const Source*>(state);
        source.calls.push_back({row, column, count});
        ASSERT_TRUE(row >= 0 && row < kSide && column >= 0 && column + count <= kSide);
        std::copy_n(source.pixels.begin() + row * kSide + column, count, to);
    }

    void randomise(std::mt19937& random, bool opaque)
    {
        for (Pixel& pixel : pixels) {
            const uint32_t alpha = opaque ? 255 : random() & 255;
            pixel = alpha << 24;
            for (int shift = 0; shift < 24; shift += 8)
                pixel |= random() % (alpha + 1) << shift;
        }
    }

    MMPaint paint(bool opaque, uint8_t opacity) const
    {
        MMPaint paint = {};
        paint.paintType = kPaintSource;
        paint.sourceFunction = write;
        paint.sourceState = this;
        paint.sourceIsOpaque = opaque;
        paint.paintOpacity = opacity;
        return paint;
    }
};

void fillRect(MMContext2D& context, int x, int y, int w, int h)
{
    context.drawEllipticalRect(x * kFixedOne + w * kFixedOne / 2, y * kFixedOne + h * kFixedOne / 2,
                               w * kFixedOne / 2, h * kFixedOne / 2, 0, 0);
}

// to over from, both premultiplied, by a weight of 0 to 1.
double over(Pixel from, Pixel to, int shift, double weight)
{
    const double alpha = (to >> 24) / 255.0 * weight;
    return (from >> shift & 255) * (1 - alpha) + (to >> shift & 255) * weight;
}

} // namespace

// Each pixel over itself by opacity and alpha, in both modes, on opaque and on cleared targets.
TEST(PaintSource, IsBlendedOverThePixelItself)
{
    std::mt19937 random(19);
    for (int round = 0; round < 60; ++round) {
        const bool opaque = round % 3 == 0;
        const uint8_t opacity = static_cast<uint8_t>(round % 2 == 0 ? 255 : random());
        Source source, before;
        source.randomise(random, opaque);
        before.randomise(random, round % 5 == 0);
        Picture picture(kSide);
        std::copy(before.pixels.begin(), before.pixels.end(),
                  picture.pixels.begin() + Picture::kGuard * kSide);
        picture.context.refined = round / 3 % 2 != 0;
        picture.context.antiAlias = picture.context.refined;
        picture.context.fillPaint = source.paint(opaque, opacity);
        fillRect(picture.context, 10, 20, 270, 40);
        int changed = 0;
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x) {
                const size_t i = static_cast<size_t>(y * kSide + x);
                const Pixel from = before.pixels[i], to = source.pixels[i];
                const bool inside = x >= 10 && x < 280 && y >= 20 && y < 60;
                changed += inside;
                for (int shift = 0; shift < 32; shift += 8)
                    ASSERT_NEAR(picture.at(x, y) >> shift & 255,
                                over(from, to, shift, inside ? opacity / 255.0 : 0), 1.5)
                        << "round " << round << " opacity " << int{opacity} << " at " << x << ", "
                        << y << std::hex << ": " << to << " over " << from;
                if (inside && opaque && opacity == 255) {
                    ASSERT_EQ(picture.at(x, y), to);
                }
            }
        ASSERT_EQ(changed, 270 * 40);
    }
}

// 1 to 128 pixels at a time, every pixel once, in the columns of the target.
TEST(PaintSource, AsksForEachPixelOnceInShortPieces)
{
    for (const uint8_t opacity : {uint8_t{255}, uint8_t{100}})
        for (const bool opaque : {false, true}) {
            Source source;
            std::fill(source.pixels.begin(), source.pixels.end(), 0xFF102030);
            Picture picture(kSide);
            picture.context.refined = 1;
            picture.context.fillPaint = source.paint(opaque, opacity);
            picture.context.drawEllipticalRect(150_fx, 150_fx, 140_fx, 140_fx, 140_fx, 140_fx);
            std::vector<int> asked(kSide * kSide);
            for (const Call& call : source.calls) {
                ASSERT_GE(call.count, 1);
                ASSERT_LE(call.count, 128);
                for (int i = 0; i < call.count; ++i)
                    ++asked[static_cast<size_t>(call.row * kSide + call.column + i)];
            }
            for (int y = 0; y < kSide; ++y)
                for (int x = 0; x < kSide; ++x) {
                    const int times = asked[static_cast<size_t>(y * kSide + x)];
                    ASSERT_LE(times, 1) << x << ", " << y;
                    if (picture.at(x, y) != Picture::kBlank) {
                        ASSERT_EQ(times, 1) << x << ", " << y;
                    }
                }
            EXPECT_GT(std::count(asked.begin(), asked.end(), 1), 61000); // 140 * 140 * pi = 61575
        }
}

TEST(PaintSource, CutsColoursDownToTheirAlpha)
{
    for (const uint8_t refined : {0, 1}) {
        Source source;
        std::fill(source.pixels.begin(), source.pixels.end(), 0x80FF40FF);
        Picture picture(kSide);
        picture.fill(0);
        picture.context.antiAlias = 0;
        picture.context.refined = refined;
        picture.context.fillPaint = source.paint(false, 255);
        fillRect(picture.context, 0, 0, kSide, kSide);
        EXPECT_EQ(picture.at(7, 9), 0x80804080u);
    }
}

// Codes around the paint's own draw nothing, nor does it without a function; and a colour written
// over the parameters is no address.
TEST(PaintSource, KnowsItsCodeAlone)
{
    Source source;
    std::fill(source.pixels.begin(), source.pixels.end(), 0xFF000000);
    Picture picture(kSide);
    MMPaint& paint = picture.context.fillPaint;
    paint = source.paint(false, 255);
    for (const uint32_t code : {14u, 15u, 128u, 254u, 255u, 257u, 258u, 512u, 0xFFFFFFFFu})
        for (const uint8_t opacity : {uint8_t{255}, uint8_t{100}}) {
            paint.paintType = code;
            paint.paintOpacity = opacity;
            fillRect(picture.context, 10, 10, 50, 50);
            EXPECT_TRUE(picture.blank()) << code;
        }
    paint = source.paint(false, 255);
    paint.sourceFunction = nullptr;
    fillRect(picture.context, 10, 10, 50, 50);
    EXPECT_TRUE(picture.blank());
    EXPECT_TRUE(source.calls.empty());
    paint = source.paint(false, 255);
    paint.paintColour = 0xDEADBEEF;
    fillRect(picture.context, 10, 10, 50, 50);
    EXPECT_EQ(picture.at(30, 30), 0xFF000000u);
}

// Under text the columns are still the target's, and opacity acts once with alpha and level. 'g'
// has all levels.
TEST(PaintSource, ShowsThroughGlyphsInPlace)
{
    std::mt19937 random(7);
    for (int round = 0; round < 40; ++round) {
        const bool opaque = round % 4 == 0;
        const uint8_t opacity = static_cast<uint8_t>(round % 2 == 0 ? 255 : random());
        Source source, before;
        source.randomise(random, opaque);
        before.randomise(random, false);
        TextScene scene(kSide);
        std::copy(before.pixels.begin(), before.pixels.end(),
                  scene.pixels.begin() + Picture::kGuard * kSide);
        scene.context.refined = round / 4 % 2 != 0;
        scene.context.fillPaint = source.paint(opaque, opacity);
        scene.context.clipLeft = 45;
        scene.context.fontSize = 30_fx;
        scene.draw(u"g", 40, 100); // columns 40 to 69, rows 70 to 99
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x) {
                const bool inside = x >= 45 && x < 70 && y >= 70 && y < 100;
                const double level = inside ? (x - 40 + y - 70) % 16 / 15.0 : 0;
                const size_t i = static_cast<size_t>(y * kSide + x);
                for (int shift = 0; shift < 32; shift += 8)
                    ASSERT_NEAR(
                        scene.at(x, y) >> shift & 255,
                        over(before.pixels[i], source.pixels[i], shift, level * opacity / 255), 1.5)
                        << "round " << round << " opacity " << int{opacity} << " at " << x << ", "
                        << y;
            }
        ASSERT_NE(source.calls.empty(), opacity != 0) << "round " << round;
    }
}
