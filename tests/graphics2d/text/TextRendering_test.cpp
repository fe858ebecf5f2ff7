// SPDX-License-Identifier: MIT
// Glyphs in the target: where they lie, how they are composited, and what they cost.
#include "graphics2d/PaintSetup.h"
#include "graphics2d/strips/StripDispatch.h"
#include "platform/FontEngine.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/TextScene.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <random>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

// --- An independent model of compositing, one channel at a time ----------------------------------

// Rounded, but up from a little below the half: 1147 / 255 = 4.498 gives 5.
int32_t dividedBy255(int32_t v)
{
    return (v + 0x81 + (v + 0x81) / 256) / 256;
}

int32_t channel(Pixel p, int32_t i)
{
    return static_cast<int32_t>(p >> (8 * i) & 255);
}

// floor(a / 256) also for negative a.
int32_t floor256(int32_t a)
{
    return a >= 0 ? a / 256 : -((255 - a) / 256);
}

// A pixel whose channel i is channelAt(i).
template <class ChannelAt>
Pixel pixelOf(ChannelAt channelAt)
{
    Pixel result = 0;
    for (int32_t i = 0; i < 4; ++i)
        result |= static_cast<Pixel>(channelAt(i)) << (8 * i);
    return result;
}

Pixel solidModel(Pixel background, Pixel colour, int32_t opacity, int32_t level)
{
    const int32_t k = dividedBy255(opacity * level * 17);
    return pixelOf([=](int32_t i) {
        const int32_t d = channel(colour, i) - channel(background, i);
        return channel(background, i) + floor256(d > 128 ? d * k + k : d * k);
    });
}

Pixel bufferModel(Pixel background, Pixel colour, int32_t opacity, int32_t level)
{
    const int32_t k = dividedBy255(opacity * level * 17);
    const int32_t rest = 255 - dividedBy255(channel(colour, 3) * k);
    return pixelOf([=](int32_t i) {
        const int32_t c = channel(colour, i) + channel(colour, i) / 128;
        const int32_t b = channel(background, i) + channel(background, i) / 128;
        return std::min(c * k / 256 + b * rest / 256, 255);
    });
}

// Two glyphs of the fake engine side by side, somewhere in and around a small clip rectangle.
struct SomeGlyphs {
    int32_t size, x, y;

    SomeGlyphs(MMContext2D& context, std::mt19937& random)
        : size(1 + static_cast<int32_t>(random() % 20)),
          x(static_cast<int32_t>(random() % 50) - 32), y(static_cast<int32_t>(random() % 50) - 12)
    {
        context.fontSize = size * kFixedOne;
        context.clipLeft = static_cast<int16_t>(random() % 8);
        context.clipTop = static_cast<int16_t>(random() % 8);
        context.clipRight = static_cast<int16_t>(12 + random() % 20); // also beyond the target
        context.clipBottom = static_cast<int16_t>(9 + random() % 20);
    }

    // Calls visit(left, right, y, glyphX) for each visible row of both glyphs.
    template <class Visit>
    void forEachRow(const MMContext2D& c, Visit visit) const
    {
        for (int32_t glyphX : {x, x + size})
            for (int32_t row = std::max<int32_t>(y - size, c.clipTop);
                 row < std::min<int32_t>({y, c.clipBottom, c.target.height}); ++row)
                visit(std::max<int32_t>(glyphX, c.clipLeft),
                      std::min<int32_t>({glyphX + size, c.clipRight, c.target.width}), row, glyphX);
    }
};

// Draws the glyphs and compares with the model; the paint's pixels are in a scene of their own.
template <class Model>
void expectGlyphs(TextScene& scene, const SomeGlyphs& glyphs, std::mt19937& random,
                  const TextScene& paint, Model model)
{
    for (int i = 0; i < scene.size * scene.size; ++i)
        scene.context.target.pixels[i] =
            static_cast<Pixel>(random() % 4 == 0 ? (random() & 1) * 0xFFFFFFFF : random());
    std::vector<Pixel> expected = scene.pixels;
    const size_t last = scene.indexOf(scene.size - 1, scene.size - 1);
    const int32_t opacity = scene.context.fillPaint.paintOpacity;
    glyphs.forEachRow(scene.context, [&](int32_t left, int32_t right, int32_t y, int32_t glyphX) {
        for (int32_t x = left; x < right && opacity != 0; ++x) {
            const size_t i = scene.indexOf(x, y);
            const Pixel background = expected[i < last ? i + 1 : i];
            const int32_t level = (x - glyphX + y - (glyphs.y - glyphs.size)) % 16;
            expected[i] = model(background, paint.at(x, y), opacity, level);
        }
    });
    scene.draw(u"gg", glyphs.x, glyphs.y);
    ASSERT_EQ(scene.pixels, expected);
}

// All paints that go through a row buffer, with what they refer to.
struct BufferedPaints {
    static constexpr int kCount = 5; // linear, radial, an image under three filters
    std::vector<Pixel> colours, texels;
    const Fixed offsets[3] = {0, kFixedHalf, kFixedOne};
    Pixel rampColours[gradientRampRoom(3)];
    Fixed rampOffsets[gradientRampRoom(3)];

    // Every colour has the bits of always.
    BufferedPaints(std::mt19937& random, Pixel always) : colours(3), texels(13 * 11)
    {
        for (std::vector<Pixel>* pixels : {&colours, &texels})
            for (Pixel& pixel : *pixels)
                pixel = random() | always;
    }

    void set(MMContext2D& context, int number, bool imageHasAlpha)
    {
        MMPaint& paint = context.fillPaint;
        const Matrix2D slanted = {60000, 9000, -7000, 70000, 5_fx, 3_fx};
        const GradientStops stops = {colours.data(), offsets, 3};
        const GradientRamp ramp = {rampColours, rampOffsets};
        if (number == 0) return setLinearGradient(paint, {0, 0}, at(50, 9), slanted, stops, ramp);
        if (number == 1) return setRadialGradient(paint, at(20, 20), 30_fx, slanted, stops, ramp);
        context.patternFilter = static_cast<uint8_t>(number - 2);
        setPattern(paint, {13, 11, 52, 0, texels.data(), imageHasAlpha}, slanted,
                   static_cast<MMPatternFilter>(number - 2));
    }
};

} // namespace

// For paints other than solid ones opacity and alpha count twice: in the row buffer, which the
// paint's own filler draws over nothing, and in the coverage. Gradients are stepped from where a
// glyph's row starts.
TEST(TextRendering, GlyphsEqualThePixelModelWhereverTheyAreCut)
{
    std::mt19937 random(6);
    for (int round = 0; round < 900 && !HasFatalFailure(); ++round) {
        SCOPED_TRACE(round);
        TextScene scene(23), paint(24); // spans see an empty pixel to their right
        const SomeGlyphs glyphs(scene.context, random);
        const uint8_t opacity = static_cast<uint8_t>(random() % 3 == 0 ? 255 : random());
        scene.context.fillPaint.paintOpacity = paint.context.fillPaint.paintOpacity = opacity;
        if (round % 2 == 0) {
            paint.fill(scene.context.fillPaint.paintColour = random());
            expectGlyphs(scene, glyphs, random, paint, solidModel);
            continue;
        }
        BufferedPaints paints(random, random() % 2 == 0 ? 0xFF000000 : 0);
        const bool imageHasAlpha = random() % 2 != 0;
        for (TextScene* s : {&scene, &paint})
            paints.set(s->context, round % BufferedPaints::kCount, imageHasAlpha);
        paint.fill(0);
        MMContext2D& context = paint.context;
        context.currentPaint = context.fillPaint;
        glyphs.forEachRow(scene.context, [&](int32_t left, int32_t right, int32_t y, int32_t) {
            context.spanRow = y;
            context.spanPixels = context.target.pixels + y * context.target.width;
            context.spanStart = left * kFixedOne;
            context.spanEnd = right * kFixedOne;
            drawSpan(context, chooseSpanFiller(context));
        });
        expectGlyphs(scene, glyphs, random, paint, bufferModel);
    }
}

TEST(TextRendering, EveryPaintTypeDrawsOrKeepsAway)
{
    const struct {
        uint32_t fill, stroke;
        uint8_t suppressed;
        bool drawn;
    } cases[] = {{kPaintSolid, kPaintNone, 0, true},     {kPaintNone, kPaintSolid, 0, true},
                 {kPaintNone, kPaintNone, 0, false},     {kPaintXOR, kPaintSolid, 0, false},
                 {kPaintPicking, kPaintSolid, 0, false}, {14, kPaintSolid, 0, false},
                 {kPaintSolid, kPaintNone, 2, false}};
    for (const auto& c : cases) {
        TextScene scene(20);
        scene.context.fillPaint.paintType = c.fill;
        scene.context.strokePaint.paintType = c.stroke;
        scene.context.strokePaint.paintColour = 0xFF000000;
        scene.context.drawSuppressed = c.suppressed;
        scene.draw(u"Bg", 0, 15);
        EXPECT_NE(scene.blank(), c.drawn) << &c - cases;
        EXPECT_GT(scene.context.penX, 23 * kFixedOne); // twelve pixels each
    }
}

TEST(TextRendering, ItalicsLeanToTheRightAlsoWhenTurned)
{
    TextScene scene(20);
    scene.context.fontStyle = kFontItalic;
    scene.context.fontSize = 10_fx;
    // Of the em's corner (x, y), y down, leaning takes tan 20 degrees of y off x before the
    // transform: 10 * (2, 0.5) and 10 * (-0.25, 3) become the columns below; the engine's y is up.
    scene.context.transform = {2_fx, 0.5_fx, -0.25_fx, 3_fx, 0, 0};
    scene.draw(u"a", 0, 15);
    constexpr double kTangent = 0.36397;
    EXPECT_NEAR(fakeFontEngine.scale.xx, fx(20 - 5 * kTangent), 40);
    EXPECT_NEAR(fakeFontEngine.scale.xy, fx(2.5 + 30 * kTangent), 40);
    EXPECT_EQ(fakeFontEngine.scale.yx, -5_fx);
    EXPECT_EQ(fakeFontEngine.scale.yy, 30_fx);
}

TEST(TextRendering, AGlyphIsMadeOnceForEachSizeMatrixCharacterAndWeight)
{
    static const Degrees turns[] = {30 * kFixedOne, 390 * kFixedOne, -330 * kFixedOne};
    const struct {
        void (*change)(MMContext2D&);
        const char16_t* text;
        int32_t glyphsMade;
    } steps[] = {
        {[](MMContext2D&) {}, u"abcabc", 3},
        {[](MMContext2D& c) { c.transform = {kFixedOne, 0, 0, kFixedOne, 70000, 3000}; }, u"cba",
         0},
        {[](MMContext2D& c) { c.transform.a += 1000; }, u"abc", 3},
        {[](MMContext2D& c) { c.fontStyle = kFontItalic; }, u"abc", 3},
        {[](MMContext2D& c) { c.fontStyle = kFontOblique; }, u"abc", 0},
        {[](MMContext2D& c) { c.fontWeight = 7, c.updateFont(); }, u"abc", 3},
        {[](MMContext2D& c) { c.fontWeight = 4, c.updateFont(); }, u"abc", 0},
        // The same angle thrice, and the fourth has none.
        {[](MMContext2D& c) { c.charRotate = turns, c.charRotateCount = 3; }, u"aaaa", 1},
        // 80 x 80 at 4 bits does not fit an entry.
        {[](MMContext2D& c) { c.charRotateCount = 0, c.fontSize = 80 * kFixedOne; }, u"BB", 2},
        {[](MMContext2D&) {}, u"BB", 2},
    };
    TextScene scene(200);
    for (const auto& step : steps) {
        step.change(scene.context);
        fakeFontEngine.glyphsMade = 0;
        scene.draw(step.text, 5, 40);
        EXPECT_EQ(fakeFontEngine.glyphsMade, step.glyphsMade) << &step - steps;
        EXPECT_EQ(fakeFontEngine.glyphsAlive, 0) << &step - steps;
    }
}

TEST(TextRendering, EvictionChangesNoPixel)
{
    // Each glyph takes half a kilobyte or more, and 10 kilobytes hold far fewer than the 90 used.
    setenv("SVG_FONT_CACHE_KB", "10", 1);
    TextScene small(300);
    unsetenv("SVG_FONT_CACHE_KB");
    TextScene large(300);
    for (TextScene* scene : {&small, &large})
        for (int32_t i = 0; i < 90; ++i) {
            const char16_t s[] = {static_cast<char16_t>(u'A' + i % 30), u'g', 0};
            scene->context.fontSize = (30 + i / 30) * kFixedOne;
            scene->draw(s, i % 30, 35);
        }
    EXPECT_EQ(small.pixels, large.pixels);
    EXPECT_LE(small.context.fontCache.usedBytes, 10240u);
    EXPECT_EQ(fakeFontEngine.glyphsAlive, 0);
}

// The index of the cache holds what a cache without any quick prefix holds: the eight digits of the
// size are made for every run, the matrix only for a glyph that is kept.
TEST(TextRendering, MatricesThatNeverComeAgainLeaveNoNodes)
{
    std::mt19937 random(16);
    setenv("SVG_FONT_CACHE_KB", "10", 1);
    TextScene scene(40);
    unsetenv("SVG_FONT_CACHE_KB");
    MMContext2D& c = scene.context;
    MMCacheContext<48> plain;
    plain.Create(10240, 2048);
    for (int frame = 0; frame < 3000; ++frame) {
        c.fontSize = fx(4 + random() % 3);
        c.transform = {static_cast<Fixed>(random() % 3 + 1) << 16,
                       static_cast<Fixed>(random() % 2),
                       static_cast<Fixed>(random() % 4),
                       static_cast<Fixed>(random() % 16 + 1) << 16,
                       0,
                       0};
        std::u16string text;
        for (uint32_t i = random() % 5; i > 0; --i)
            text += static_cast<char16_t>(u'a' + random() % 4);
        c.renderText(Text(text).data(), 99, random() % 2, 0);

        uint32_t key[6] = {static_cast<uint32_t>(c.fontSize)};
        plain.PreFetch(key, 8, 1);
        const int32_t size = c.fontSize >> 16;
        const uint32_t a = static_cast<uint32_t>(size * c.transform.a),
                       d = static_cast<uint32_t>(size * c.transform.d);
        key[1] = a, key[2] = d;
        key[3] = static_cast<uint32_t>(size * c.transform.b);
        key[4] = static_cast<uint32_t>(size * c.transform.c);
        for (const char16_t unit : text) {
            key[5] = unit;
            if (plain.Get(key) != nullptr) continue;
            const uint32_t stride = ((a >> 16) + 1) / 2;
            plain.Add(nullptr, key, uint32_t{sizeof(FS_GrayMap)} + stride * (d >> 16));
        }
        ASSERT_EQ(c.fontCache.nodeCount, plain.nodeCount) << "frame " << frame;
        ASSERT_EQ(c.fontCache.usedBytes, plain.usedBytes) << "frame " << frame;
    }
    plain.Destroy();

    TextScene fresh(10);
    fresh.context.renderText(Text(u"").data(), 0, 0, 0);
    EXPECT_EQ(fresh.context.fontCache.nodeCount, 8u);
    fresh.context.renderText(Text(u"abc").data(), 3, 0, 0);
    EXPECT_EQ(fakeFontEngine.scalesSet, 3);
}

// What is only measured, or lies outside the clip rectangle, has its advance and its box but no
// bitmap, unless it is small enough for the cache.
TEST(TextRendering, NoBitmapIsRenderedForWhatIsNotSeen)
{
    TextScene scene(60);
    MMContext2D& c = scene.context;
    c.fontSize = 900_fx;
    c.accumulateBounds = 1;
    EXPECT_NEAR(c.getTextWidth(Text(std::u16string(20, u'B')).data(), 99), fx(20 * 900), 20 * 900);
    scene.draw(u"BgBi", 100, 500);
    scene.draw(u"BgBi", 10, -100);
    EXPECT_EQ(fakeFontEngine.pixelsDrawn, 0);
    EXPECT_EQ(c.boundsMinX, 10_fx);
    EXPECT_EQ(c.boundsMaxX, fx(10 + 900 * 3 + 450));
    EXPECT_TRUE(scene.blank());
    // From the third on: their pens are at -830 and 70.
    scene.draw(u"BBBB", -2630, 500);
    EXPECT_EQ(fakeFontEngine.pixelsDrawn, 900 * 900);
    EXPECT_EQ(scene.at(0, 0), 0xFF000000);
    EXPECT_EQ(scene.at(59, 59), 0xFF000000);
    EXPECT_EQ(fakeFontEngine.glyphsAlive, 0);
    // Too large for any bitmap.
    c.fontSize = 20000_fx;
    EXPECT_NEAR(c.getTextWidth(Text(u"i").data(), 1), 10000_fx, 12000);
}

TEST(TextRendering, SpansOfARowBufferEndBelowTheGlyph)
{
    TextScene scene(40);
    MMContext2D& c = scene.context;
    std::mt19937 random(3);
    BufferedPaints paints(random, 0xFF000000);
    paints.set(c, 0, false);
    scene.draw(u"a", 3, 20);
    EXPECT_EQ(c.spanRow, 20);
    EXPECT_EQ(c.spanEnd, 12_fx);
}

// After the first frame, whatever the paint.
TEST(TextRendering, SteadyDrawingAndMeasuringMakeNoHeapCalls)
{
    std::mt19937 random(5);
    BufferedPaints paints(random, 0);
    TextScene scene(90);
    MMContext2D& c = scene.context;
    FailingHeap heap;
    c.wrapWidth = 50_fx;
    c.textDecoration = 1;
    const auto drawFrame = [&] {
        for (int paint = -1; paint < BufferedPaints::kCount; ++paint) {
            c.penX = c.penY = 0;
            c.fillPaint.paintType = kPaintSolid;
            if (paint >= 0) paints.set(c, paint, true);
            scene.draw(u"ag ji", 5, 20);
            c.getTextWidth(Text(u"agg").data(), 3);
            c.drawWrappedText(Text(u"aa bb cc dd ee ff gg").data(), 0, 0);
        }
    };
    drawFrame();
    heap.failAt(0); // counts anew
    drawFrame();
    EXPECT_EQ(heap.calls(), 0u); // the layout engine of these tests has a heap of its own
}
