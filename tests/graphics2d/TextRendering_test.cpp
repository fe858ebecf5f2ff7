// Glyphs in the target: where they lie, how they are composited, and what they cost.
#include "graphics2d/PaintSetup.h"
#include "graphics2d/StripDispatch.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/TextScene.h"

#include <gtest/gtest.h>

#include <random>

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

Pixel solidModel(Pixel background, Pixel colour, int32_t opacity, int32_t level)
{
    const int32_t k = dividedBy255(opacity * level * 17);
    Pixel result = 0;
    for (int32_t i = 0; i < 4; ++i) {
        const int32_t d = channel(colour, i) - channel(background, i);
        const int32_t v = channel(background, i) + floor256(d > 128 ? d * k + k : d * k);
        result |= static_cast<Pixel>(v) << (8 * i);
    }
    return result;
}

Pixel bufferModel(Pixel background, Pixel colour, int32_t opacity, int32_t level)
{
    const int32_t k = dividedBy255(opacity * level * 17);
    const int32_t rest = 255 - dividedBy255(channel(colour, 3) * k);
    Pixel result = 0;
    for (int32_t i = 0; i < 4; ++i) {
        const int32_t c = channel(colour, i) + (channel(colour, i) >= 128 ? 1 : 0);
        const int32_t b = channel(background, i) + (channel(background, i) >= 128 ? 1 : 0);
        const int32_t v = c * k / 256 + b * rest / 256;
        result |= static_cast<Pixel>(v < 255 ? v : 255) << (8 * i);
    }
    return result;
}

// The opacities that one in three glyphs has, and the others.
uint8_t someOpacity(std::mt19937& random)
{
    return static_cast<uint8_t>(random() % 3 == 0 ? 255 : random());
}

// A glyph of the fake engine somewhere in and around a small clip rectangle.
struct SomeGlyph {
    int32_t size, x, y;

    SomeGlyph(TextScene& scene, std::mt19937& random)
        : size(1 + static_cast<int32_t>(random() % 20)),
          x(static_cast<int32_t>(random() % 50) - 22), y(static_cast<int32_t>(random() % 50) - 12)
    {
        MMContext2D& context = scene.context;
        context.fontSize = size * kFixedOne;
        context.clipLeft = static_cast<int16_t>(random() % 8);
        context.clipTop = static_cast<int16_t>(random() % 8);
        context.clipRight = static_cast<int16_t>(12 + random() % 20); // also beyond the target
        context.clipBottom = static_cast<int16_t>(9 + random() % 20);
    }
};

// Draws the glyph and compares with the model; paint holds the paint's pixels.
template <class Model>
void expectGlyph(TextScene& scene, const SomeGlyph& glyph, std::vector<Pixel> picture,
                 const std::vector<Pixel>& paint, Model model)
{
    const MMContext2D& context = scene.context;
    scene.storePicture(picture);
    scene.draw(u"g", glyph.x, glyph.y);
    const int32_t opacity = context.fillPaint.paintOpacity;
    const int32_t width = context.target.width, height = context.target.height;
    const int32_t top = glyph.y - glyph.size;
    for (int32_t y = top; opacity != 0 && y < glyph.y; ++y)
        for (int32_t x = glyph.x; x < glyph.x + glyph.size; ++x) {
            if (x < context.clipLeft || x >= std::min<int32_t>(context.clipRight, width)) continue;
            if (y < context.clipTop || y >= std::min<int32_t>(context.clipBottom, height)) continue;
            const size_t i = static_cast<size_t>(y * width + x);
            const Pixel background = picture[i + 1 < picture.size() ? i + 1 : i];
            picture[i] = model(background, paint[i], opacity, (x - glyph.x + y - top) % 16);
        }
    ASSERT_EQ(scene.picture(), picture);
    ASSERT_TRUE(scene.guardsIntact());
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

    void set(MMContext2D& context, int paint, bool imageHasAlpha)
    {
        const Matrix2D slanted = {60000, 9000, -7000, 70000, 5 * kFixedOne, 3 * kFixedOne};
        const GradientStops stops = {colours.data(), offsets, 3};
        if (paint == 0)
            setLinearGradient(context.fillPaint, {0, 0}, {50 * kFixedOne, 9 * kFixedOne}, slanted,
                              stops, {rampColours, rampOffsets});
        if (paint == 1)
            setRadialGradient(context.fillPaint, {20 * kFixedOne, 20 * kFixedOne}, 30 * kFixedOne,
                              slanted, stops, {rampColours, rampOffsets});
        if (paint < 2) return;
        context.patternFilter = static_cast<uint8_t>(paint - 2);
        setPattern(context.fillPaint, {13, 11, 52, 0, texels.data(), imageHasAlpha}, slanted,
                   static_cast<MMPatternFilter>(paint - 2));
    }

    // Fills columns [left, right) of a row on its own.
    static void drawSpan(TextScene& scene, int32_t left, int32_t right, int32_t row)
    {
        MMContext2D& context = scene.context;
        context.currentPaint = context.fillPaint;
        context.spanRow = row;
        context.spanPixels = context.target.pixels + row * context.target.width;
        context.spanStart = left * kFixedOne;
        context.spanEnd = right * kFixedOne;
        KAVO::Graphics2D::drawSpan(context, chooseSpanFiller(context));
    }
};

std::vector<Pixel> randomPicture(const TextScene& scene, std::mt19937& random)
{
    std::vector<Pixel> picture(scene.pixelCount());
    for (Pixel& pixel : picture)
        pixel = random() % 4 == 0 ? (random() & 1 ? 0xFFFFFFFFu : 0) : random();
    return picture;
}

Matrix2D translation(Fixed x, Fixed y)
{
    return {kFixedOne, 0, 0, kFixedOne, x, y};
}

} // namespace

TEST(TextRendering, solidGlyphsEqualThePixelModelWhereverTheyAreCut)
{
    std::mt19937 random(5);
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        TextScene scene(23, 17);
        const SomeGlyph glyph(scene, random);
        scene.context.fillPaint.paintColour = random();
        scene.context.fillPaint.paintOpacity = someOpacity(random);
        const std::vector<Pixel> paint(scene.pixelCount(), scene.context.fillPaint.paintColour);
        expectGlyph(scene, glyph, randomPicture(scene, random), paint, solidModel);
        if (HasFatalFailure()) return;
    }
}

// Opacity and alpha count twice: in the row buffer, which the paint's own filler draws over
// nothing, and in the coverage.
TEST(TextRendering, otherPaintsEqualThePixelModelOverTheirOwnRows)
{
    std::mt19937 random(6);
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        TextScene scene(23, 17), rows(23, 17);
        const SomeGlyph glyph(scene, random);
        BufferedPaints paints(random, random() % 2 == 0 ? 0xFF000000 : 0);
        const bool imageHasAlpha = random() % 2 != 0;
        const uint8_t opacity = someOpacity(random);
        for (TextScene* s : {&scene, &rows}) {
            paints.set(s->context, round % BufferedPaints::kCount, imageHasAlpha);
            s->context.fillPaint.paintOpacity = opacity;
        }
        rows.fill(0);
        const int32_t left = std::max<int32_t>(glyph.x, scene.context.clipLeft);
        const int32_t right =
            std::min<int32_t>({glyph.x + glyph.size, scene.context.clipRight, 23});
        for (int32_t y = 0; y < 17; ++y)
            BufferedPaints::drawSpan(rows, left, right, y);
        expectGlyph(scene, glyph, randomPicture(scene, random), rows.picture(), bufferModel);
        if (HasFatalFailure()) return;
    }
}

TEST(TextRendering, aPaintSeenThroughABlockIsThePaintOfARectangleThere)
{
    std::mt19937 random(7);
    // Channels below 128 lose one when they are composited at full coverage.
    BufferedPaints paints(random, 0xFF808080);
    for (int paint = 0; paint < BufferedPaints::kCount; ++paint) {
        TextScene scene(64, 48), rectangles(64, 48);
        paints.set(scene.context, paint, false);
        paints.set(rectangles.context, paint, false);
        scene.context.fontSize = 20 * kFixedOne;
        // Three blocks side by side, the first cut on the left, drawn twice over: the paint must
        // not creep.
        scene.draw(u"BBB", -7, 33);
        scene.draw(u"BBB", -7, 33);
        const int32_t columns[] = {0, 13, 33, 53}; // gradients are stepped from where a span starts
        for (int i = 0; i < 3; ++i)
            for (int32_t y = 13; y < 33; ++y)
                BufferedPaints::drawSpan(rectangles, columns[i], columns[i + 1], y);
        EXPECT_EQ(scene.picture(), rectangles.picture()) << "paint " << paint;
    }
}

TEST(TextRendering, blocksStandWhereThePenIs)
{
    TextScene scene(40, 30);
    scene.context.fontSize = 8 * kFixedOne;
    scene.context.accumulateBounds = 1;
    scene.draw(u"B", 10, 20);
    for (int32_t y = 0; y < 30; ++y)
        for (int32_t x = 0; x < 40; ++x) {
            const bool inside = x >= 10 && x < 18 && y >= 12 && y < 20;
            ASSERT_EQ(scene.at(x, y), inside ? 0xFF000000 : 0xFFFFFFFF) << x << ", " << y;
        }
    EXPECT_EQ(scene.context.boundsMinX, 10 * kFixedOne);
    EXPECT_EQ(scene.context.boundsMinY, 12 * kFixedOne);
    EXPECT_EQ(scene.context.boundsMaxX, 18 * kFixedOne);
    EXPECT_EQ(scene.context.boundsMaxY, 20 * kFixedOne);
}

TEST(TextRendering, everyPaintTypeDrawsOrKeepsAway)
{
    const struct {
        uint32_t fill, stroke;
        bool drawn;
    } cases[] = {{kPaintSolid, kPaintNone, true},     {kPaintNone, kPaintSolid, true},
                 {kPaintNone, kPaintNone, false},     {kPaintXOR, kPaintSolid, false},
                 {kPaintPicking, kPaintSolid, false}, {14, kPaintSolid, false}};
    for (const auto& c : cases) {
        TextScene scene(20, 20);
        scene.context.fillPaint.paintType = c.fill;
        scene.context.strokePaint.paintType = c.stroke;
        scene.context.strokePaint.paintColour = 0xFF000000;
        const std::vector<Pixel> before = scene.picture();
        scene.draw(u"Bg", 0, 15);
        EXPECT_EQ(scene.picture() != before, c.drawn) << c.fill << " and " << c.stroke;
        EXPECT_GT(scene.context.penX, 23 * kFixedOne); // twelve pixels each
    }
    TextScene scene(20, 20);
    for (uint8_t suppressed : {1, 2, 255}) {
        scene.context.drawSuppressed = suppressed;
        const std::vector<Pixel> before = scene.picture();
        scene.draw(u"B", 0, 15);
        EXPECT_EQ(scene.picture(), before);
    }
}

TEST(TextRendering, aGlyphIsMadeOnceForEachSizeMatrixCharacterAndWeight)
{
    TextScene scene(200, 60);
    MMContext2D& context = scene.context;
    const auto glyphsFor = [&](const char16_t* s) {
        const int32_t before = fakeFontEngine.glyphsMade;
        scene.draw(s, 5, 40);
        EXPECT_EQ(fakeFontEngine.glyphsAlive, 0);
        return fakeFontEngine.glyphsMade - before;
    };
    EXPECT_EQ(glyphsFor(u"abcabc"), 3);
    EXPECT_EQ(glyphsFor(u"cba"), 0);
    context.transform = translation(7 * kFixedOne, 3000);
    EXPECT_EQ(glyphsFor(u"abc"), 0);
    context.transform.a += 1000;
    EXPECT_EQ(glyphsFor(u"abc"), 3);
    context.transform = kIdentityMatrix;
    context.fontStyle = kFontItalic;
    EXPECT_EQ(glyphsFor(u"abc"), 3);
    context.fontStyle = kFontOblique;
    EXPECT_EQ(glyphsFor(u"abc"), 0);
    context.fontStyle = kFontUpright;
    context.fontWeight = 7;
    context.updateFont();
    EXPECT_EQ(glyphsFor(u"abc"), 3);
    context.fontWeight = 4;
    context.updateFont();
    EXPECT_EQ(glyphsFor(u"abc"), 0);
    const Degrees turns[] = {30 * kFixedOne, 390 * kFixedOne, -330 * kFixedOne};
    context.charRotate = turns;
    context.charRotateCount = 3;
    EXPECT_EQ(glyphsFor(u"aaaa"), 1); // the same angle thrice, and the fourth stands upright
    context.charRotateCount = 0;
    // 80 x 80 at 4 bits does not fit an entry.
    context.fontSize = 80 * kFixedOne;
    EXPECT_EQ(glyphsFor(u"BB"), 2);
    EXPECT_EQ(glyphsFor(u"BB"), 2);
}

TEST(TextRendering, evictionChangesNoPixel)
{
    // Each glyph takes half a kilobyte or more, and 10 kilobytes hold far fewer than the 90 used.
    setenv("SVG_FONT_CACHE_KB", "10", 1);
    TextScene small(300, 40);
    unsetenv("SVG_FONT_CACHE_KB");
    TextScene large(300, 40);
    for (TextScene* scene : {&small, &large})
        for (uint16_t first = 0; first < 3; ++first)
            for (uint16_t c = 'A'; c < 'A' + 30; ++c) {
                const char16_t s[] = {static_cast<char16_t>(c), u'g', 0};
                scene->context.fontSize = (30 + first) * kFixedOne;
                scene->draw(s, c - 'A', 35);
            }
    EXPECT_EQ(small.picture(), large.picture());
    EXPECT_LE(small.context.fontCache.usedBytes, 10240u);
    EXPECT_EQ(fakeFontEngine.glyphsAlive, 0);
}

TEST(TextRendering, absurdSizesTransformsAndPositionsStayInTheTarget)
{
    std::mt19937 random(8);
    const Fixed odd[] = {0, 1, -1, 0x7FFFFFFF, -0x7FFFFFFF - 1, 0x10000, -0x10000, 0x320000};
    const auto any = [&] { return odd[random() % 8]; };
    for (int round = 0; round < 2000; ++round) {
        TextScene scene(30, 20);
        MMContext2D& context = scene.context;
        context.fontSize = any();
        context.transform = {any(), any(), any(), any(), any(), any()};
        context.clipLeft = static_cast<int16_t>(random());
        context.clipTop = static_cast<int16_t>(random());
        context.clipRight = static_cast<int16_t>(random());
        context.clipBottom = static_cast<int16_t>(random());
        context.accumulateBounds = 1;
        context.textAnchor = random() % 4;
        const Fixed list[] = {any(), any(), any()};
        context.charX = context.charY = context.charRotate = list;
        context.charXCount = random() % 4;
        context.charYCount = random() % 4;
        context.charRotateCount = random() % 4;
        Text text(u"Bgij \xD83D\xDE00\xDC00z");
        context.drawText(text.data(), any(), any());
        context.drawWrappedText(text.data(), 0, 0);
        ASSERT_TRUE(scene.guardsIntact()) << "round " << round;
        ASSERT_EQ(fakeFontEngine.glyphsAlive, 0);
        ASSERT_EQ(context.scratchStack.usedWords, 0u);
    }
}

TEST(TextRendering, everyFailingAllocationIsSurvived)
{
    TextScene scene(60, 40);
    const Pixel colours[] = {0xFF000000, 0xFFFF0000};
    const Fixed offsets[] = {0, kFixedOne};
    Pixel rampColours[16];
    Fixed rampOffsets[16];
    Text text(u"BB gi jBg");
    const auto operation = [&] {
        MMContext2D context;
        context.target = scene.context.target;
        context.clipRight = 60;
        context.clipBottom = 40;
        context.wrapWidth = 40 * kFixedOne;
        context.textDecoration = 1;
        setLinearGradient(context.fillPaint, {0, 0}, {60 * kFixedOne, 0}, kIdentityMatrix,
                          {colours, offsets, 2}, {rampColours, rampOffsets});
        context.drawText(text.data(), 0, 20 * kFixedOne);
        context.drawWrappedText(text.data(), 0, 0);
        EXPECT_EQ(context.scratchStack.usedWords, 0u);
        fontEngineUsers = 2; // a context that had no metrics left without having joined
    };
    const uint32_t calls = failEachAllocation(operation);
    EXPECT_GT(calls, 20u);
    for (uint32_t n = 1; n <= calls; ++n) { // and everything from there on
        FailingHeap heap;
        heap.failFrom(n);
        operation();
        EXPECT_EQ(heap.liveBlocks(), 0) << n;
    }
    fontEngineUsers = 1;
    EXPECT_TRUE(scene.guardsIntact());
    EXPECT_EQ(fakeFontEngine.glyphsAlive, 0);
}

TEST(TextRendering, withoutARowBufferTheTextIsNotDrawnButAdvances)
{
    TextScene scene(200, 200);
    MMContext2D& context = scene.context;
    std::vector<Pixel> texels(4, 0xFF112233);
    setPattern(context.fillPaint, {2, 2, 8, 0, texels.data(), 0}, kIdentityMatrix, kFilterNearest);
    context.fontSize = 100 * kFixedOne;
    scene.draw(u"B", 500, 100);                    // out of sight: only to learn the cost
    void* rest = context.scratchStack.Alloc(1000); // the next allocation must spill
    const std::vector<Pixel> before = scene.picture();
    FailingHeap heap;
    Text text(u"B");
    heap.failFrom(2); // the glyph's own memory comes first
    context.drawText(text.data(), 0, 100 * kFixedOne);
    heap.failAt(0);
    context.scratchStack.DeAlloc(rest);
    EXPECT_EQ(scene.picture(), before);
    EXPECT_GT(context.penX, 99 * kFixedOne);
    EXPECT_EQ(context.outOfMemory, kScratchExhausted);
}
