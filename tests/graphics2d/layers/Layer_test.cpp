// SPDX-License-Identifier: MIT
// Layers, held to what is drawn without them, and to their opacity and masks in doubles.
#include "graphics2d/layers/MMLayer.h"
#include "tests/graphics2d/masks/LevelledMask.h"
#include "tests/pictures/Scenes.h"
#include "tests/support/FailingHeap.h"

#include <optional>
#include <random>

using namespace KAVO;

namespace KAVO::Graphics2D::pictures {
namespace {

constexpr int kPixels = kSide * kSide;

int channelOf(Pixel pixel, int k)
{
    return static_cast<int>(pixel >> 8 * k & 0xFF);
}

// A layer rounds what is drawn once more: to at most two levels, and seldom to more than one.
void expectClose(const std::vector<Pixel>& a, const std::vector<Pixel>& b, const char* name)
{
    int far = 0;
    for (size_t i = 0; i < a.size(); ++i)
        for (int k = 0; k < 4; ++k) {
            const int distance = std::abs(channelOf(a[i], k) - channelOf(b[i], k));
            ASSERT_LE(distance, 2) << name << ", pixel " << i % kSide << ' ' << i / kSide;
            far += distance > 1 ? 1 : 0;
        }
    EXPECT_LE(far, kPixels / 25) << name;
}

// Whether a scene draws by operations alone, over what is there.
bool suitsLayers(const std::string& name)
{
    return name != "exclusive-or" && name != "path-positions" && name != "solid-on-transparent" &&
           name.find("image-parts") != 0 && name.find("layer") != 0 && name.find("mask") != 0;
}

void drawInLayers(Canvas& canvas, const Scene& scene, int depth)
{
    if (depth == 0) return scene.draw(canvas);
    const MMLayer layer(canvas.context);
    EXPECT_TRUE(layer.isOpen());
    drawInLayers(canvas, scene, depth - 1);
}

TEST(Layer, WholeOnesShowWhatIsDrawnWithoutThem)
{
    for (const Scene& scene : kScenes) {
        if (!suitsLayers(scene.name)) continue;
        Canvas direct;
        direct.context.refined = 1;
        scene.draw(direct);
        std::vector<Pixel> once;
        for (const int depth : {1, 4}) {
            Canvas layered;
            layered.context.refined = 1;
            drawInLayers(layered, scene, depth);
            if (depth == 1) once = layered.pixels;
            EXPECT_EQ(layered.pixels, once) << scene.name;
            expectClose(layered.pixels, direct.pixels, scene.name);
            EXPECT_EQ(layered.context.boundsMinX, direct.context.boundsMinX) << scene.name;
            EXPECT_EQ(layered.context.boundsMaxY, direct.context.boundsMaxY) << scene.name;
            EXPECT_EQ(layered.context.scratchStack.usedWords, 0u) << scene.name;
            EXPECT_EQ(layered.context.outOfMemory, 0) << scene.name;
        }
    }
}

// Two shapes that overlap, opaque where they do.
void drawPair(Canvas& c)
{
    c.solid(kRed), c.star();
    c.solid(kNight), c.polygon({at(10, 30), at(90, 40.5), at(80, 70), at(12.5, 60)});
    c.solid(kBlue);
}

TEST(Layer, IsWeighedByItsOpacityAndBothMasks)
{
    const LevelledMask clip(1), own(2);
    Canvas ground, plain;
    plain.context.refined = 1;
    drawPair(plain);
    for (const uint8_t opacity : {255, 200, 77, 1, 0})
        for (int masks = 0; masks < 4; ++masks) {
            Canvas layered;
            layered.context.clipMask = (masks & 1) != 0 ? &clip.mask : nullptr;
            MMLayerOptions options;
            options.opacity = opacity;
            options.mask = (masks & 2) != 0 ? &own.mask : nullptr;
            {
                const MMLayer layer(layered.context, options);
                drawPair(layered);
            }
            for (size_t i = 0; i < kPixels; ++i) {
                const double share = opacity / 255.0 *
                                     ((masks & 1) != 0 ? clip.levels[i] / 255.0 : 1) *
                                     ((masks & 2) != 0 ? own.levels[i] / 255.0 : 1);
                for (int k = 0; k < 4; ++k) {
                    const int from = channelOf(ground.pixels[i], k);
                    const int to = channelOf(plain.pixels[i], k);
                    ASSERT_NEAR(channelOf(layered.pixels[i], k), from + (to - from) * share, 2.01)
                        << "opacity " << int{opacity} << ", masks " << masks << ", pixel "
                        << i % kSide << ' ' << i / kSide;
                }
            }
        }
}

TEST(Layer, CoversItsRectangleInsideTheClip)
{
    Canvas cut, layered;
    cut.context.refined = 1;
    for (Canvas* c : {&cut, &layered})
        c->context.clipLeft = 7, c->context.clipBottom = 80;
    {
        const MMLayer layer(layered.context, -20, 11, 60, 200);
        EXPECT_EQ(layer.left(), 7);
        EXPECT_EQ(layer.top(), 11);
        EXPECT_EQ(layer.right(), 60);
        EXPECT_EQ(layer.bottom(), 80);
        layered.context.clipLeft = 0, layered.context.clipBottom = 900; // has no more to show
        drawPair(layered);
        const MMLayer inner(layered.context, 20, 0, 300, 300);
        EXPECT_EQ(inner.left(), 20);
        EXPECT_EQ(inner.right(), 60);
        EXPECT_EQ(inner.top(), 11);
    }
    cut.context.clipTop = 11, cut.context.clipRight = 60;
    drawPair(cut);
    expectClose(layered.pixels, cut.pixels, "pair");

    const std::vector<Pixel> ground = layered.pixels;
    {
        const MMLayer empty(layered.context, 50, 50, 50, 90);
        EXPECT_TRUE(empty.isOpen());
        drawPair(layered), layered.texts();
    }
    EXPECT_EQ(layered.pixels, ground);
    EXPECT_EQ(layered.context.outOfMemory, 0);
}

// Whatever is done to them inside.
// Glyphs are blended four pixels at a time, which must not reach beyond the caller's buffer.
TEST(Layer, OfOnePixelHasItsPartOfAGlyph)
{
    constexpr int kRow = 55;
    const auto drawText = [](Canvas& c) {
        c.context.refined = 1;
        c.solid(kRed);
        c.text(u"gag", 6, 60, 30);
    };
    Canvas direct, layered;
    drawText(direct);
    for (int column = 0; column < kSide; ++column) {
        std::vector<Pixel> buffer(MMLayer::pixelsNeeded(column, kRow, column + 1, kRow + 1));
        MMLayerOptions options;
        options.buffer = buffer.data();
        options.bufferPixels = static_cast<uint32_t>(buffer.size());
        const MMLayer layer(layered.context, column, kRow, column + 1, kRow + 1, options);
        drawText(layered);
    }
    const auto rowOf = [](const Canvas& c) {
        const auto first = c.pixels.begin() + kRow * kSide;
        return std::vector<Pixel>(first, first + kSide);
    };
    expectClose(rowOf(layered), rowOf(direct), "text");
    EXPECT_NE(rowOf(direct), rowOf(Canvas()));
}

TEST(Layer, BringsTheContextBack)
{
    const LevelledMask clip(3);
    Canvas canvas, other;
    canvas.context.clipMask = &clip.mask;
    const MMPixmap target = canvas.context.target;
    {
        const MMLayer layer(canvas.context);
        EXPECT_EQ(canvas.context.refined, 1);
        EXPECT_EQ(canvas.context.clipMask, nullptr);
        setTarget(canvas.context, other.pixels.data(), 4, 4);
        canvas.context.refined = 0;
        canvas.context.layer = nullptr;
    }
    EXPECT_EQ(canvas.context.target.pixels, target.pixels);
    EXPECT_EQ(canvas.context.target.rowBytes, target.rowBytes);
    EXPECT_EQ(canvas.context.clipMask, &clip.mask);
    EXPECT_EQ(canvas.context.refined, 0);
    EXPECT_EQ(canvas.context.layer, nullptr);
}

TEST(Layer, DrawsStraightAwayWithoutMemory)
{
    Canvas direct;
    drawPair(direct);
    std::vector<Pixel> buffer(MMLayer::pixelsNeeded(0, 0, kSide, kSide) - 1);
    MMLayerOptions options;
    options.opacity = 9;
    options.buffer = buffer.data();
    options.bufferPixels = static_cast<uint32_t>(buffer.size());
    Canvas small, poor;
    {
        const MMLayer layer(small.context, options);
        EXPECT_FALSE(layer.isOpen());
        drawPair(small);
    }
    EXPECT_EQ(small.context.outOfMemory, kScratchExhausted);
    EXPECT_EQ(small.pixels, direct.pixels);
    options.buffer = nullptr;
    {
        FailingHeap heap;
        heap.failAt(1);
        const MMLayer layer(poor.context, options);
        EXPECT_FALSE(layer.isOpen());
        heap.failAt(0);
        drawPair(poor);
    }
    EXPECT_EQ(poor.context.outOfMemory, kScratchExhausted);
    EXPECT_EQ(poor.pixels, direct.pixels);
}

// Only where shapes are is a layer cleared; pixmap() clears the rest.
TEST(Layer, TouchesWhatIsDrawnAlone)
{
    constexpr Pixel kUntouched = 0x12345678;
    std::vector<Pixel> buffer(MMLayer::pixelsNeeded(0, 0, kSide, kSide), kUntouched);
    MMLayerOptions options;
    options.buffer = buffer.data();
    options.bufferPixels = static_cast<uint32_t>(buffer.size());
    Canvas canvas;
    MMLayer layer(canvas.context, options);
    canvas.polygon({at(20, 30), at(50, 30), at(50, 33), at(20, 33)});
    const auto touched = [&] {
        return kPixels - std::count(buffer.begin(), buffer.begin() + kPixels, kUntouched);
    };
    EXPECT_GE(touched(), 90);
    EXPECT_LE(touched(), 5 * 36);
    const MMPixmap drawn = layer.pixmap();
    EXPECT_EQ(touched(), kPixels);
    EXPECT_EQ(drawn.pixels, buffer.data());
    EXPECT_EQ(drawn.width, kSide);
    EXPECT_EQ(buffer[31 * kSide + 30], kBlue);
    EXPECT_EQ(buffer[0], 0u);
}

// Rows are cleared between what is drawn, in whatever order, and nowhere under what hides it.
TEST(Layer, ShowsNothingOfWhatItsBufferHad)
{
    std::mt19937 random(3);
    for (int round = 0; round < 200; ++round) {
        std::vector<Pixel> buffer(MMLayer::pixelsNeeded(0, 0, kSide, kSide), 0xDEADBEEF);
        MMLayerOptions options;
        options.buffer = buffer.data();
        options.bufferPixels = static_cast<uint32_t>(buffer.size());
        Canvas direct, layered;
        direct.context.refined = layered.context.refined = 1;
        std::optional<MMLayer> layer(std::in_place, layered.context, options);
        std::string drawn;
        for (int i = 0; i < 4; ++i) {
            const auto half = [&](uint32_t most) {
                return static_cast<Fixed>(random() % (2 * most)) * kFixedHalf;
            };
            const Fixed x = half(80), y = half(80), width = half(16), height = half(16);
            const Pixel colour = i % 2 == 0 ? 0xFF2060C0 : 0x802060C0;
            for (Canvas* c : {&direct, &layered}) {
                c->context.fillPaint.paintColour = colour;
                c->context.drawPath(MMPathBuilder().rect(x, y, width, height).words());
            }
            drawn += std::to_string(x) + ' ' + std::to_string(y) + ' ' + std::to_string(width) +
                     ' ' + std::to_string(height) + ", ";
        }
        layer.reset();
        for (size_t i = 0; i < kPixels; ++i)
            for (int k = 0; k < 4; ++k)
                ASSERT_NEAR(channelOf(layered.pixels[i], k), channelOf(direct.pixels[i], k), 3)
                    << drawn << "pixel " << i % kSide << ' ' << i / kSide;
    }
}

TEST(Layer, BecomesAMaskAndIsLeftOut)
{
    Canvas canvas;
    const std::vector<Pixel> ground = canvas.pixels;
    LevelledMask alpha(4), light(5), added(6);
    fillMask(added.mask, 0);
    {
        MMLayer layer(canvas.context, 10, 0, kSide, kSide);
        canvas.solid(0xFF00FF00), canvas.opacity(128);
        canvas.polygon({at(0, 0), at(40, 0), at(40, 50), at(0, 50)});
        layer.fill(alpha.mask, kMaskFromAlpha);
        layer.fill(light.mask, kMaskFromLuminance);
        layer.discard();
    }
    EXPECT_EQ(canvas.pixels, ground);
    canvas.context.maskTarget = &added.mask;
    {
        MMLayerOptions options;
        options.opacity = 100;
        const MMLayer layer(canvas.context, options);
        EXPECT_EQ(canvas.context.maskTarget, nullptr);
        canvas.polygon({at(10, 0), at(40, 0), at(40, 50), at(10, 50)});
    }
    EXPECT_EQ(canvas.context.maskTarget, &added.mask);
    EXPECT_EQ(canvas.pixels, ground);
    for (int i = 0; i < kPixels; ++i) {
        const int x = i % kSide, y = i / kSide;
        const bool inside = x >= 10 && x < 40 && y < 50;
        const size_t at = static_cast<size_t>(i);
        ASSERT_EQ(alpha.levels[at], inside ? 128 : 0) << x << ' ' << y;
        ASSERT_EQ(light.levels[at], inside ? 92 : 0) << x << ' ' << y; // 0.7152 * 128 = 91.5
        ASSERT_EQ(added.levels[at], inside ? 50 : 0) << x << ' ' << y; // 128 * 100 / 255 = 50.2
    }
}

// The masks around open layers, too, say where the pick point can be hit.
TEST(Layer, IsPickedThroughTheMasksAroundIt)
{
    const LevelledMask clip(7);
    Canvas canvas;
    canvas.context.clipMask = &clip.mask;
    const MMLayer layer(canvas.context);
    const MMLayer inner(canvas.context);
    canvas.solid(0, kPaintPicking);
    for (size_t i = 0; i < kPixels; i += 7) {
        canvas.context.pickX = fixFromInt(static_cast<int32_t>(i % kSide)) + kFixedHalf;
        canvas.context.pickY = fixFromInt(static_cast<int32_t>(i / kSide));
        canvas.context.pickHit = 0;
        canvas.polygon({at(0, 0), at(kSide, 0), at(kSide, kSide), at(0, kSide)});
        ASSERT_EQ(canvas.context.pickHit, clip.levels[i] >= 128) << i;
    }
}

} // namespace
} // namespace KAVO::Graphics2D::pictures
