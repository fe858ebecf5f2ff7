// SPDX-License-Identifier: MIT
// Text by the refined rules, against double precision.
#include "graphics2d/PaintSetup.h"
#include "graphics2d/convenience/MMContextState.h"
#include "tests/support/TextScene.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

struct RefinedScene : TextScene {
    explicit RefinedScene(int side) : TextScene(side) { context.refined = 1; }
};

std::u16string repeated(const char16_t* text, int count)
{
    std::u16string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

// A quarter turn's worth of everything that keeps letters legible.
Matrix2D someTransform(std::mt19937& random)
{
    const double scale = 0.5 + random() % 1000 / 200.0, angle = random() % 1000 / 500.0;
    const double skew = random() % 1000 / 1000.0 - 0.5;
    return {fx(scale * std::cos(angle)),
            fx(scale * std::sin(angle)),
            fx(scale * (skew - std::sin(angle))),
            fx(scale * std::cos(angle)),
            static_cast<Fixed>(random() % 0x100000),
            static_cast<Fixed>(random() % 0x100000)};
}

} // namespace

// What a paint of one colour leaves, layer after layer, on targets that are opaque or cleared.
// 'g' has all levels.
TEST(RefinedText, BlendsOpacityAlphaAndCoverageAtOnce)
{
    std::mt19937 random(8);
    for (int round = 0; round < 400; ++round) {
        const int layers = round % 4 == 0 ? 64 : 1;
        const bool cleared = random() % 2 != 0;
        const Pixel colour = random() | (random() % 2 != 0 ? 0xFF000000 : 0);
        const uint8_t opacity = static_cast<uint8_t>(random() % 2 != 0 ? 255 : random());
        const Pixel background = cleared ? 0 : random() | 0xFF000000;
        SCOPED_TRACE(testing::Message() << std::hex << colour << " " << int{opacity} << " on "
                                        << background << ", layers " << std::dec << layers);
        RefinedScene scene(20);
        scene.fill(background);
        scene.context.fillPaint.paintColour = colour;
        scene.context.fillPaint.paintOpacity = opacity;
        for (int i = 0; i < layers; ++i)
            scene.draw(u"g", 3, 15);
        for (int y = 3; y < 15; ++y)
            for (int x = 3; x < 15; ++x) {
                const double weight =
                    ((x - 3 + y - 3) % 16) / 15.0 * opacity / 255 * (colour >> 24) / 255;
                // Layers that move a channel by less than half a level stick there.
                if (layers > 1 && weight < 1 / 8.0) continue;
                for (int shift = 0; shift < 32; shift += 8) {
                    const double target = shift == 24 ? 255 : (colour >> shift & 255);
                    double expected = background >> shift & 255;
                    for (int i = 0; i < layers; ++i)
                        expected += (target - expected) * weight;
                    ASSERT_NEAR(scene.at(x, y) >> shift & 255, expected, layers > 1 ? 5 : 1)
                        << x << ", " << y << " bits " << shift;
                }
            }
        ASSERT_EQ(scene.at(15, 10), background); // nothing moves
        ASSERT_EQ(scene.at(2, 10), background);
    }
}

// The paint's opacity acts once under text, and where the glyph is empty nothing changes.
TEST(RefinedText, LetsAGradientThroughByTheLevelAlone)
{
    const Pixel colours[] = {0xFFFF8000, 0xFF0040FF};
    const Fixed offsets[] = {0, kFixedOne};
    Pixel rampColours[gradientRampRoom(2)];
    Fixed rampOffsets[gradientRampRoom(2)];
    for (const Pixel background : {0xFFFFFFFFu, 0xFF204060u, 0u}) {
        RefinedScene scene(40), plain(40);
        for (RefinedScene* s : {&scene, &plain}) {
            s->fill(s == &plain ? 0 : background);
            setLinearGradient(s->context.fillPaint, at(2, 3), at(37, 30), kIdentityMatrix,
                              {colours, offsets, 2}, {rampColours, rampOffsets});
        }
        plain.context.fontSize = scene.context.fontSize = 30_fx;
        plain.draw(u"B", 4, 34); // a full block: the gradient itself
        scene.draw(u"g", 4, 34);
        for (int y = 4; y < 34; ++y)
            for (int x = 4; x < 34; ++x)
                for (int shift = 0; shift < 32; shift += 8) {
                    const double level = (x - 4 + y - 4) % 16 / 15.0;
                    const double from = background >> shift & 255;
                    const double to = plain.at(x, y) >> shift & 255;
                    ASSERT_NEAR(scene.at(x, y) >> shift & 255, from + (to - from) * level, 1)
                        << x << ", " << y << " bits " << shift;
                }
        ASSERT_EQ(scene.at(34, 20), background);
    }
}

TEST(RefinedText, InkIsTheSumOfTheGlyphImages)
{
    for (int32_t size = 8; size <= 48; ++size) {
        RefinedScene scene(400);
        MMContext2D& c = scene.context;
        c.fontSize = fx(size);
        c.fontStyle = size % 3 == 0 ? kFontItalic : kFontUpright;
        const double angle = size % 2 == 0 ? 0 : 0.01 * size;
        c.transform = {fx(std::cos(angle)),
                       fx(std::sin(angle)),
                       fx(-std::sin(angle)),
                       fx(std::cos(angle)),
                       60.3_fx,
                       100.7_fx};
        // Images that overlap nothing: the engine's blocks, far apart.
        std::vector<Fixed> xs, ys;
        for (int i = 0; i < 4; ++i)
            xs.push_back(fx(70 * i)), ys.push_back(fx(3 * i));
        c.charX = xs.data(), c.charY = ys.data();
        c.charXCount = c.charYCount = 4;
        scene.draw(u"gghg", 0, 0);
        int64_t ink = 0;
        for (int y = 0; y < 400; ++y)
            for (int x = 0; x < 400; ++x)
                ink += scene.coverage(x, y);
        // 'g' was made once and drawn three times.
        int64_t expected = 0;
        for (char16_t unit : {u'g', u'h'}) {
            RefinedScene one(200);
            one.context.fontSize = c.fontSize;
            one.context.fontStyle = c.fontStyle;
            one.context.transform = c.transform;
            fakeFontEngine.levelsDrawn = 0;
            const char16_t text[] = {unit, 0};
            one.draw(text, 0, 0);
            expected += 17 * fakeFontEngine.levelsDrawn * (unit == u'g' ? 3 : 1);
        }
        EXPECT_NEAR(ink, expected, expected / 100) << size;
    }
}

// Of the em's corner (x, y), y down, leaning takes tan 20 degrees of y off x before the transform;
// the engine's y is up.
TEST(RefinedText, ItalicsLeanAlongTheirBaseline)
{
    std::mt19937 random(9);
    constexpr double kTangent = 0.36397;
    for (int round = 0; round < 100; ++round) {
        RefinedScene scene(10);
        MMContext2D& c = scene.context;
        c.transform = someTransform(random);
        c.fontStyle = round % 2 == 0 ? kFontItalic : kFontOblique;
        c.fontSize = 10_fx;
        scene.draw(u"a", 0, 0);
        const Matrix2D& t = c.transform;
        SCOPED_TRACE(testing::Message() << t.a << " " << t.b << " " << t.c << " " << t.d);
        EXPECT_NEAR(fakeFontEngine.scale.xx, 10.0 * t.a, 10);
        EXPECT_NEAR(fakeFontEngine.scale.yx, -10.0 * t.b, 10);
        EXPECT_NEAR(fakeFontEngine.scale.xy, -10 * (t.c - kTangent * t.a), 60);
        EXPECT_NEAR(fakeFontEngine.scale.yy, 10 * (t.d - kTangent * t.b), 60);
    }
}

TEST(RefinedText, OneCallAndSixtyEndAtTheSamePlace)
{
    std::mt19937 random(10);
    for (int round = 0; round < 200; ++round) {
        RefinedScene scene(10);
        MMContext2D& c = scene.context;
        c.transform = someTransform(random);
        c.fontSize = fx(8 + random() % 40 / 3.0);
        const MMPoint2D start = {static_cast<Fixed>(random() % 0x200000),
                                 static_cast<Fixed>(random() % 0x200000)};
        const Text sixty(repeated(u"aig", 20));
        MMPoint2D ends[2];
        for (int calls : {0, 1}) {
            c.penX = start.x, c.penY = start.y;
            Text text = sixty;
            if (calls == 0) c.renderText(text.data(), 60, 0, 0);
            for (int i = 0; calls != 0 && i < 60; ++i)
                c.renderText(text.data() + i, 1, 0, 0);
            ends[calls] = {c.penX, c.penY};
        }
        const double dx = ends[0].x - ends[1].x, dy = ends[0].y - ends[1].y;
        const double a = c.transform.a / 65536.0, b = c.transform.b / 65536.0,
                     k = c.transform.c / 65536.0, d = c.transform.d / 65536.0;
        EXPECT_LE(std::hypot(a * dx + k * dy, b * dx + d * dy), 65536 / 64.0)
            << c.transform.a << " " << c.transform.b << " " << c.transform.c << " " << c.transform.d
            << " from " << start.x << ", " << start.y;
    }
}

TEST(RefinedText, GlyphsStandAtTheNearestPixelAndLinesEvenly)
{
    RefinedScene scene(90);
    MMContext2D& c = scene.context;
    scene.draw(u"a", 0, 12); // 12 pixels
    for (const auto& [x, column] : {std::pair{20.49, 20}, {39.5, 40}, {59.75, 60}}) {
        c.drawText(Text(u"a").data(), fx(x), 12_fx);
        EXPECT_EQ(scene.at(column - 1, 5), TextScene::kBlank) << x;
        EXPECT_EQ(scene.at(column, 5), 0xFF000000) << x;
        EXPECT_EQ(scene.at(column + 11, 5), 0xFF000000) << x;
    }
    scene.fill(TextScene::kBlank);
    c.wrapWidth = 12_fx; // a character each
    c.lineHeight = 13_fx;
    c.penX = 0;
    c.penY = 12.4_fx;
    c.drawWrappedText(Text(u"a a a a a").data(), 0, 0);
    for (int y = 0; y < 13 * 5; ++y)
        EXPECT_EQ(scene.at(3, y) == 0xFF000000, y % 13 != 12) << y;
    EXPECT_EQ(c.penY, 12.4_fx + 5 * 13_fx);
}

TEST(RefinedText, SoftHyphensAreSilentAndMeasuringCollapsesBlanks)
{
    RefinedScene scene(90);
    MMContext2D& c = scene.context;
    scene.draw(u"a\u00ADb", 0, 12);
    EXPECT_EQ(c.penX, 24_fx);
    const auto width = [&c](const char16_t* text) { return c.getTextWidth(Text(text).data(), 99); };
    EXPECT_EQ(width(u"  a \t\n b \u00AD"), fx(4 * 12)); // a, a space, b, a space
    c.preserveSpace = 1;
    EXPECT_EQ(width(u" a\t\r\nb"), fx(5 * 12)); // without the carriage return
    // A line broken at a blank measures it all the same.
    c.preserveSpace = 0;
    c.wrapWidth = 30_fx;
    MMTextLayout* layout = c.createTextLayout(Text(u"a bb").data(), 30);
    ASSERT_NE(layout, nullptr);
    EXPECT_EQ(layout->lineCount, 2);
    c.destroyTextLayout(layout);
}

TEST(RefinedText, PlacesCharactersInUserSpace)
{
    RefinedScene scene(90);
    MMContext2D& c = scene.context;
    const Fixed xs[] = {10_fx, 30_fx}, ys[] = {40_fx, 50_fx};
    c.charX = xs, c.charY = ys;
    c.charXCount = c.charYCount = 2;
    c.transform = {0, kFixedOne, -kFixedOne, 0, 80_fx, 0}; // x goes down, y goes left
    c.accumulateBounds = 1;
    scene.draw(u"aa", 0, 0);
    EXPECT_EQ(c.penX, fx(30 + 12));
    EXPECT_EQ(c.penY, 50_fx);
}

// Rows are rowBytes apart, and the last one needs no padding.
TEST(RefinedText, RowsAreAsFarApartAsTheTargetSays)
{
    constexpr int kWidth = 21, kHeight = 15, kStride = 32;
    std::vector<Pixel> pixels(kStride * (kHeight - 1) + kWidth, 0xFFFFFFFF);
    FreshEngine fresh;
    MMContext2D c;
    setTarget(c, pixels.data(), kWidth, kHeight, kStride * 4);
    c.fontSize = fx(kWidth);
    c.drawText(Text(u"B").data(), 0, fx(kHeight));
    for (size_t i = 0; i < pixels.size(); ++i)
        ASSERT_EQ(pixels[i], i % kStride < kWidth ? 0xFF000000 : 0xFFFFFFFF) << i;
}
