// SPDX-License-Identifier: MIT
// Drawing through a mask, held to what is drawn without one, and into a mask, held to the alpha of
// what is drawn onto cleared pixels.
#include "graphics2d/masks/LevelBlending.h"
#include "graphics2d/masks/MMMaskSetup.h"
#include "tests/graphics2d/masks/LevelledMask.h"
#include "tests/pictures/Scenes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace KAVO;

namespace KAVO::Graphics2D::pictures {
namespace {

constexpr int kPixels = kSide * kSide;

std::array<Fixed, 4> boundsOf(const MMContext2D& c)
{
    return {c.boundsMinX, c.boundsMinY, c.boundsMaxX, c.boundsMaxY};
}

TEST(ClipMask, OneThatHidesNothingChangesNothing)
{
    LevelledMask all;
    fillMask(all.mask, 255);
    for (const Scene& scene : kScenes)
        for (const uint8_t refined : {0, 1}) {
            Canvas plain, masked;
            plain.context.refined = masked.context.refined = refined;
            masked.context.clipMask = &all.mask;
            scene.draw(plain);
            scene.draw(masked);
            EXPECT_EQ(masked.pixels, plain.pixels) << scene.name << (refined ? " refined" : "");
            EXPECT_EQ(boundsOf(masked.context), boundsOf(plain.context)) << scene.name;
        }
}

// One shape in each paint, so that each pixel is drawn once.
struct Paint {
    const char* name;
    void (*set)(Canvas&);
    double within; // of 255, against the picture without a mask
};

const Paint kPaints[] = {
    {"solid", [](Canvas& c) { c.solid(kRed); }, 1.5},
    {"solid alpha", [](Canvas& c) { c.solid(0x90E63946), c.opacity(200); }, 1.5},
    {"linear", [](Canvas& c) { c.linear(); }, 0.51},
    {"linear faded", [](Canvas& c) { c.linear(true), c.opacity(180); }, 0.51},
    {"radial", [](Canvas& c) { c.radial(true); }, 0.51},
    {"nearest", [](Canvas& c) { c.pattern(kFilterNearest); }, 0.51},
    {"bilinear", [](Canvas& c) { c.pattern(kFilterBilinear, true), c.opacity(99); }, 0.51},
    {"bicubic", [](Canvas& c) { c.pattern(kFilterBicubic, true); }, 0.51},
};

using Draw = void (*)(Canvas&);
const Draw kDrawings[] = {
    [](Canvas& c) { c.star(); },
    [](Canvas& c) { c.hard(), c.star(); },
    [](Canvas& c) {
        c.polygon({at(3.5, 90.5), at(94, 2.25), at(94.5, 93)});
    },
    [](Canvas& c) {
        c.polygon({at(2.25, 1), at(93.75, 1), at(93.75, 95), at(2.25, 95)});
    },
    [](Canvas& c) {
        c.hard(), c.polygon({at(1, 0), at(96, 0), at(96, 96), at(1, 96)});
    },
    [](Canvas& c) {
        c.stroke(9), c.line({at(10, 12), at(80, 30), at(20, 80)});
    },
    [](Canvas& c) { c.text(u"gag", 6, 60, 30); },
};

// Codes between the paints draw whole spans and no edges, others draw nothing.
TEST(ClipMask, LeavesCodesWithoutEdgesWithoutThem)
{
    LevelledMask all;
    fillMask(all.mask, 255);
    for (const Paint& paint : kPaints)
        for (const Draw draw : kDrawings)
            for (const uint32_t beyond : {1u, 14u, 255u, UINT32_MAX - kPaintPattern}) {
                Canvas plain, masked;
                for (Canvas* c : {&plain, &masked}) {
                    paint.set(*c);
                    c->context.fillPaint.paintType += beyond;
                }
                masked.context.clipMask = &all.mask;
                draw(plain);
                draw(masked);
                EXPECT_EQ(masked.pixels, plain.pixels)
                    << paint.name << " + " << beyond << ", drawing " << &draw - kDrawings;
            }
}

double channelOf(Pixel pixel, int k)
{
    return pixel >> 8 * k & 0xFF;
}

TEST(ClipMask, MovesEveryPixelByItsLevel)
{
    uint32_t seed = 1;
    for (const uint8_t refined : {0, 1})
        for (const Paint& paint : kPaints)
            for (const Draw draw : kDrawings) {
                LevelledMask some;
                some.fillAtRandom(++seed);
                Canvas ground, plain, masked;
                // Classic fillers take backgrounds from the right, so it is the same everywhere.
                for (Canvas* c : {&ground, &plain, &masked}) {
                    std::fill(c->pixels.begin(), c->pixels.end(), 0xFF336699);
                    c->context.refined = refined;
                    paint.set(*c);
                }
                masked.context.clipMask = &some.mask;
                draw(plain);
                draw(masked);
                EXPECT_EQ(boundsOf(masked.context), boundsOf(plain.context));
                const double within = refined ? paint.within : 3;
                for (size_t i = 0; i < kPixels; ++i)
                    for (int k = 0; k < 4; ++k) {
                        const double from = channelOf(ground.pixels[i], k);
                        const double to = channelOf(plain.pixels[i], k);
                        const double exact = from + (to - from) * some.levels[i] / 255;
                        ASSERT_NEAR(channelOf(masked.pixels[i], k), exact, within)
                            << paint.name << ", refined " << int{refined} << ", drawing "
                            << &draw - kDrawings << ", seed " << seed << ", pixel " << i % kSide
                            << ' ' << i / kSide;
                    }
            }
}

// The formulas of both ways of weighing, on whatever registers: exact, for rows of all lengths and
// runs of levels. Hidden and whole ones follow them under opaque colours.
TEST(ClipMask, WeighsByTheFormula)
{
    constexpr int kMost = 210;
    std::mt19937 random(11);
    for (int round = 0; round < 3000; ++round) {
        const size_t count = random() % (round % 2 ? kMost : kMost / 3);
        const bool isOpaque = random() % 3 == 0;
        std::vector<Pixel> ground(count), drawn(count);
        std::vector<uint8_t> levels(count);
        for (size_t i = 0; i < count; ++i) {
            ground[i] = static_cast<Pixel>(random());
            drawn[i] = static_cast<Pixel>(random());
            levels[i] = static_cast<uint8_t>(1 + random() % 254); // neither hidden nor whole
            if (isOpaque && random() % 8 == 0) levels[i] = random() % 2 ? 255 : 0;
            if (round % 2 && i > 0 && random() % 40 != 0) levels[i] = levels[i - 1];
        }
        const MMMask mask = {0, 0, static_cast<int16_t>(count), 1, kMost, levels.data()};

        MMContext2D context;
        std::vector<Pixel> moved = ground;
        context.level->moveByLevels(moved.data(), drawn.data(), levels.data(),
                                    static_cast<int32_t>(count));

        std::vector<Pixel> tinted = ground;
        setTarget(context, tinted.data(), static_cast<int32_t>(count), 1);
        context.clipMask = &mask;
        const Pixel colour = static_cast<Pixel>(random()) | (isOpaque ? 0xFF000000 : 0);
        const uint8_t opacity = isOpaque ? 255 : static_cast<uint8_t>(random());
        context.fillPaint.paintColour = colour;
        context.fillPaint.paintOpacity = opacity;
        context.drawPath(MMPathBuilder().rect(0, 0, fixFromInt(kMost), fixFromInt(1)).words());

        const uint32_t whole = (opacity * (colour >> 24) * 256 + 127) / 255; // 8.8
        for (size_t i = 0; i < count; ++i)
            for (int k = 0; k < 4; ++k) {
                const uint32_t from = ground[i] >> 8 * k & 255, level = levels[i];
                const uint32_t to = drawn[i] >> 8 * k & 255;
                ASSERT_EQ(moved[i] >> 8 * k & 255,
                          (2 * (from * (255 - level) + to * level) + 255) / 510)
                    << "pixel " << i << " of " << count;
                const uint32_t weight = ((level * 256 * whole >> 16) + 127) * 258 >> 16;
                const uint32_t tint = k == 3 ? 255 : colour >> 8 * k & 255;
                ASSERT_EQ(tinted[i] >> 8 * k & 255,
                          (from * (256 - weight) + tint * weight + 128) >> 8)
                    << "pixel " << i << " of " << count << std::hex << ", colour " << colour;
            }
    }
}

TEST(ClipMask, ExclusiveOrAndPickingTakePixelsFromHalfOn)
{
    LevelledMask some;
    some.fillAtRandom(5);
    Canvas plain, masked;
    const std::vector<Pixel> ground = plain.pixels;
    masked.context.clipMask = &some.mask;
    for (Canvas* c : {&plain, &masked})
        c->solid(0x00FF7F40, kPaintXOR), c->star();
    for (size_t i = 0; i < kPixels; ++i)
        ASSERT_EQ(masked.pixels[i], some.levels[i] >= 128 ? plain.pixels[i] : ground[i]) << i;

    masked.solid(0, kPaintPicking);
    for (int i = 0; i < kPixels; i += 7) {
        const int x = i % kSide, y = i / kSide;
        masked.context.pickX = x * kFixedOne + kFixedHalf, masked.context.pickY = y * kFixedOne;
        masked.context.pickHit = 0;
        masked.polygon({at(0, 0), at(kSide, 0), at(kSide, kSide), at(0, kSide)});
        ASSERT_EQ(masked.context.pickHit, some.levels[static_cast<size_t>(i)] >= 128) << i;
    }
}

// Nothing outside of a mask's rectangle is read or shown, wherever that lies.
TEST(ClipMask, RectanglesMayLieAnywhere)
{
    const std::array<int16_t, 4> boxes[] = {{-20, -30, 40, 50},  {60, 70, 130, 140},
                                            {-32768, 5, -9, 90}, {10, 10, 10, 40},
                                            {40, 40, 20, 60},    {32000, 0, 32767, 2}};
    for (const auto& [left, top, right, bottom] : boxes) {
        const int area = std::max(0, right - left) * std::max(0, bottom - top);
        std::vector<uint8_t> levels(static_cast<size_t>(area));
        const MMMask mask = makeMask(levels.data(), left, top, right, bottom);
        fillMask(mask, 255);
        for (const Draw draw : kDrawings)
            for (const uint8_t refined : {0, 1}) {
                Canvas ground, masked, cut;
                for (Canvas* c : {&masked, &cut})
                    c->context.refined = refined, c->linear(true);
                masked.context.clipMask = &mask;
                const auto clamped = [](int v) {
                    return static_cast<int16_t>(std::clamp(v, 0, int{kSide}));
                };
                cut.context.clipLeft = clamped(left), cut.context.clipTop = clamped(top);
                cut.context.clipRight = clamped(right), cut.context.clipBottom = clamped(bottom);
                draw(masked);
                draw(cut);
                EXPECT_EQ(masked.pixels, area > 0 ? cut.pixels : ground.pixels) << left;
            }
    }
    const MMMask none = {0, 0, kSide, kSide, kSide, nullptr};
    Canvas canvas;
    const std::vector<Pixel> ground = canvas.pixels;
    canvas.context.clipMask = &none;
    canvas.star(), canvas.texts();
    EXPECT_EQ(canvas.pixels, ground);
}

// A mask has the levels, but for roundings, that the alpha of cleared pixels has after a solid
// colour of the paint's opacity, whatever the paint; and the target stays as it was.
TEST(MaskTarget, TakesCoverageAndOpacityOfEveryPaint)
{
    for (const Paint& paint : kPaints)
        for (const Draw draw : kDrawings) {
            Canvas alpha, masked;
            for (Canvas* c : {&alpha, &masked}) {
                c->context.refined = 1;
                std::fill(c->pixels.begin(), c->pixels.end(), 0);
                paint.set(*c);
            }
            const uint8_t opacity = masked.context.fillPaint.paintOpacity;
            if (alpha.context.fillPaint.paintType != kPaintSolid) alpha.solid(kRed);
            LevelledMask levelled;
            masked.context.maskTarget = &levelled.mask;
            for (int layers = 0; layers < 2; ++layers) {
                draw(alpha), draw(masked);
                // Strokes leave their paint where the next would fill.
                for (Canvas* c : {&alpha, &masked})
                    if (c->context.fillPaint.paintType == kPaintNone)
                        c->context.fillPaint = c->context.strokePaint;
            }
            for (size_t i = 0; i < kPixels; ++i)
                ASSERT_NEAR(levelled.levels[i], alpha.pixels[i] >> 24, 2)
                    << paint.name << " of opacity " << int{opacity} << ", drawing "
                    << &draw - kDrawings << ", pixel " << i % kSide << ' ' << i / kSide;
            EXPECT_EQ(masked.pixels, std::vector<Pixel>(kPixels));
        }
}

// The part that a drawing has touched shows all of it, and nothing else is left to be cleared.
TEST(MaskTarget, PartsThatWereTouchedAreTheWholeDrawing)
{
    for (const uint8_t refined : {0, 1})
        for (const Draw draw : kDrawings) {
            LevelledMask shape;
            fillMask(shape.mask, 0);
            Canvas canvas, whole, part;
            canvas.context.refined = refined;
            canvas.context.accumulateBounds = 1;
            canvas.context.maskTarget = &shape.mask;
            draw(canvas);
            const MMMask touched = drawnPart(shape.mask, canvas.context);
            whole.context.clipMask = &shape.mask;
            part.context.clipMask = &touched;
            for (Canvas* c : {&whole, &part}) {
                c->solid(kRed);
                c->polygon({at(0, 0), at(kSide, 0), at(kSide, kSide), at(0, kSide)});
            }
            EXPECT_EQ(part.pixels, whole.pixels) << "drawing " << &draw - kDrawings;
            fillMask(touched, 0);
            EXPECT_EQ(shape.levels, std::vector<uint8_t>(kPixels, 0));
        }
    MMContext2D idle;
    LevelledMask none;
    idle.boundsMinX = idle.boundsMinY = kEmptyBoundsMin;
    idle.boundsMaxX = idle.boundsMaxY = kEmptyBoundsMax;
    EXPECT_EQ(drawnPart(none.mask, idle).levels, nullptr);
}

// drawImage brings its own paint along.
TEST(MaskTarget, TakesImages)
{
    LevelledMask levelled;
    Canvas canvas;
    const std::vector<Pixel> ground = canvas.pixels;
    canvas.context.target.pixels = nullptr; // nobody needs it
    canvas.context.refined = 1;
    canvas.context.maskTarget = &levelled.mask;
    canvas.context.imageOpacity = 100;
    canvas.place(2, 0, 0, 2, 10, 20), canvas.drawImage(0, 0, 12, 10);
    for (int i = 0; i < kPixels; ++i) {
        const int x = i % kSide, y = i / kSide;
        const bool inside = x >= 10 && x < 34 && y >= 20 && y < 40;
        ASSERT_EQ(levelled.levels[static_cast<size_t>(i)], inside ? 100 : 0) << x << ' ' << y;
    }
    EXPECT_EQ(canvas.pixels, ground);
}

// Two complementary clips leave no seam wider than m * (1 - m); a clip inside a clip is both.
TEST(MaskTarget, ClipsNestAndComplement)
{
    for (const Draw draw : kDrawings) {
        LevelledMask outer, plain, nested, rest;
        outer.fillAtRandom(9);
        Canvas canvas;
        canvas.context.refined = 1;
        canvas.context.maskTarget = &plain.mask, draw(canvas);
        if (canvas.context.fillPaint.paintType == kPaintNone)
            canvas.context.fillPaint = canvas.context.strokePaint;
        canvas.context.clipMask = &outer.mask;
        canvas.context.maskTarget = &nested.mask, draw(canvas);
        for (size_t i = 0; i < kPixels; ++i)
            ASSERT_NEAR(nested.levels[i], plain.levels[i] * outer.levels[i] / 255.0, 1.01) << i;

        rest.levels = plain.levels;
        invertMask(rest.mask);
        Canvas halves;
        halves.context.refined = 1;
        std::fill(halves.pixels.begin(), halves.pixels.end(), 0xFF000000);
        halves.solid(0xFFFFFFFF);
        for (const MMMask* clip : {&plain.mask, &rest.mask}) {
            halves.context.clipMask = clip;
            halves.polygon({at(0, 0), at(kSide, 0), at(kSide, kSide), at(0, kSide)});
        }
        for (size_t i = 0; i < kPixels; ++i) {
            const double m = plain.levels[i] / 255.0;
            ASSERT_NEAR(halves.pixels[i] & 255, 255 * (1 - m * (1 - m)), 1.5) << i;
        }
    }
}

TEST(MaskSetup, IntersectsAndConverts)
{
    LevelledMask a, product;
    a.fillAtRandom(2);
    product.levels = a.levels;
    std::vector<uint8_t> small(50 * 40);
    const MMMask b = makeMask(small.data(), -10, 20, 40, 60);
    for (size_t i = 0; i < small.size(); ++i)
        small[i] = static_cast<uint8_t>(i * 7);
    intersectMask(product.mask, b);
    for (int i = 0; i < kPixels; ++i) {
        const int x = i % kSide, y = i / kSide;
        const bool inside = x < 40 && y >= 20 && y < 60;
        const int other = inside ? small[static_cast<size_t>((y - 20) * 50 + x + 10)] : 0;
        ASSERT_EQ(product.levels[static_cast<size_t>(i)],
                  std::lround(a.levels[static_cast<size_t>(i)] * other / 255.0))
            << x << ' ' << y;
    }

    // Premultiplied pixels, each source against doubles.
    std::mt19937 random(3);
    std::vector<Pixel> pixels(64 * 64);
    for (Pixel& pixel : pixels) {
        const Pixel alpha = random() % 256;
        const auto channel = [&] { return static_cast<Pixel>(random() % (alpha + 1)); };
        pixel = alpha << 24 | channel() << 16 | channel() << 8 | channel();
    }
    const auto linear = [](double c) {
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    const MMPixmap pixmap = {64, 64, 256, 0, pixels.data(), 1};
    for (const MMMaskSource source :
         {kMaskFromAlpha, kMaskFromLuminance, kMaskFromLinearLuminance}) {
        LevelledMask made;
        fillMask(made.mask, 77);
        setMaskFromPixels(made.mask, pixmap, -4, 50, source);
        for (int i = 0; i < kPixels; ++i) {
            const int x = i % kSide + 4, y = i / kSide - 50;
            double exact = 0;
            if (x < 64 && y >= 0 && y < 64) {
                const Pixel p = pixels[static_cast<size_t>(y * 64 + x)];
                const double alpha = channelOf(p, 3);
                const auto light = [&](int k) {
                    if (source != kMaskFromLinearLuminance) return channelOf(p, k);
                    return alpha == 0 ? 0 : alpha * linear(channelOf(p, k) / alpha);
                };
                exact = source == kMaskFromAlpha
                            ? alpha
                            : 0.2126 * light(2) + 0.7152 * light(1) + 0.0722 * light(0);
            }
            ASSERT_NEAR(made.levels[static_cast<size_t>(i)], exact, 0.52) << x << ' ' << y;
        }
    }
}

} // namespace
} // namespace KAVO::Graphics2D::pictures
