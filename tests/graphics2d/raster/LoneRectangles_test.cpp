// SPDX-License-Identifier: MIT
// Small rectangles of one path, those that are drawn each by itself among them.
#include "graphics2d/raster/Rasteriser.h"
#include "tests/graphics2d/raster/RasterShapes.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/Picture.h"

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using namespace model;

using Shapes = std::vector<Polygon>;

void fill(Picture& picture, const Shapes& shapes)
{
    Polygon points;
    std::vector<uint32_t> ends;
    for (const Polygon& shape : shapes) {
        points.insert(points.end(), shape.begin(), shape.end());
        ends.push_back(uint32_t(points.size()));
    }
    fillContours(picture.context, {points.data(), ends.data(), uint32_t(ends.size())},
                 MMFillRule(picture.context.fillRule), ThinShapes::kOneSpan);
}

// The same shapes with one vertex more in the middle of the first level edge of each. What they
// cover is the same, but none is known for a rectangle.
Shapes withMiddles(Shapes shapes)
{
    for (Polygon& shape : shapes) {
        const size_t i = shape[0].y == shape[1].y ? 0 : 1;
        const Fixed middle = Fixed((int64_t{shape[i].x} + shape[i + 1].x) / 2);
        shape.insert(shape.begin() + int(i) + 1, {middle, shape[i].y});
    }
    return shapes;
}

std::string listOf(const Shapes& shapes)
{
    std::string text;
    for (const Polygon& shape : shapes)
        text += " (" + std::to_string(shape[0].x) + ", " + std::to_string(shape[0].y) + ") to (" +
                std::to_string(shape[2].x) + ", " + std::to_string(shape[2].y) + ")";
    return text;
}

// Draws the shapes as they are and so that none is known for a rectangle.
void expectNoDifference(const Shapes& shapes, uint32_t seed)
{
    std::mt19937 random(seed);
    Picture alone, together;
    for (Picture* picture : {&alone, &together}) {
        random.seed(seed);
        MMContext2D& context = picture->context;
        for (int i = 0; i < picture->size * picture->size; ++i)
            context.target.pixels[i] = Pixel(random());
        context.refined = random() % 2;
        context.fillRule = random() % 2;
        context.currentPaint.paintColour = Pixel(random());
        if (random() % 2 == 0) context.currentPaint.paintOpacity = uint8_t(random());
        if (random() % 4 == 0) {
            context.clipLeft = int16_t(random() % 20);
            context.clipTop = int16_t(random() % 20);
            context.clipRight = int16_t(40 + random() % 20);
            context.clipBottom = int16_t(40 + random() % 20);
        }
    }
    fill(alone, shapes);
    fill(together, withMiddles(shapes));
    EXPECT_EQ(alone.context.spanRows, 1u);
    ASSERT_TRUE(alone.pixels == together.pixels)
        << "seed " << seed << ", refined " << int(alone.context.refined) << ":" << listOf(shapes);
}

TEST(LoneRectangles, AreDrawnAsTogetherWithTheOthers)
{
    for (uint32_t seed = 0; seed < 2000; ++seed) {
        std::mt19937 random(seed);
        constexpr Fixed kSteps[] = {0x10000, 0x8000, 0x1000, 1};
        const Fixed step = kSteps[random() % 4];
        const auto below = [&](int32_t end) {
            return int32_t(random() % uint32_t(end * kFixedOne)) & -step;
        };
        const int32_t largest = 1 + int32_t(random() % (random() % 4 == 0 ? 50 : 15));
        Shapes shapes(8 + random() % 40);
        for (Polygon& shape : shapes) {
            const Fixed left = below(70) - 3 * kFixedOne, top = below(70) - 3 * kFixedOne;
            const Fixed right = left + below(largest) + step, bottom = top + below(largest) + step;
            shape = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
            if (random() % 2 == 0) std::swap(shape[1], shape[3]);
            std::rotate(shape.begin(), shape.begin() + random() % 4, shape.end());
            if (random() % 4 == 0) shape.push_back(shape[0]);
        }
        ASSERT_NO_FATAL_FAILURE(expectNoDifference(shapes, seed));
    }
}

// The sweep draws columns whose areas grow evenly as one run, to within a tenth of a weight.
TEST(LoneRectangles, AreNotThoseThatOneRunPassesThrough)
{
    for (uint32_t seed = 0; seed < 2000; ++seed) {
        std::mt19937 random(seed);
        const Fixed shift = random() % 2 == 0 ? 0 : kFixedHalf; // what one of the modes adds
        const Fixed top = fixFromInt(20) - shift;
        const Fixed first = 4000 + Fixed(random() % 8000), step = Fixed(random() % 4000);
        Shapes shapes = {rectangle(1, 1, 2, 2), rectangle(60, 60, 61, 61)}; // room for so many
        for (Fixed i = 0; i < 10; ++i) {
            const Fixed left = fixFromInt(10 + i) - shift;
            const Fixed bottom = top + first + i * step + Fixed(random() % 30);
            shapes.push_back(
                {{left, top}, {left + kFixedOne, top}, {left + kFixedOne, bottom}, {left, bottom}});
        }
        ASSERT_NO_FATAL_FAILURE(expectNoDifference(shapes, seed));
    }
}

TEST(LoneRectangles, CoverTheirShareOfEachPixel)
{
    Picture picture;
    picture.context.refined = 1;
    Shapes shapes;
    for (int i = 0; i < 9; ++i)
        shapes.push_back(rectangle(7 * i + 1.25, 2.5, 7 * i + 4.5, 4));
    shapes.push_back(rectangle(30.25, 10.25, 30.75, 10.75)); // within a pixel
    shapes.push_back(rectangle(-1, 20, 0.5, 21));            // cut by the target
    fill(picture, shapes);
    constexpr int kUpper[] = {0, 96, 128, 128, 64}, kLower[] = {0, 191, 255, 255, 128};
    for (int i = 0; i < 9; ++i)
        for (int x = 0; x < 5; ++x) {
            EXPECT_NEAR(picture.coverage(7 * i + x, 2), kUpper[x], 1) << i << ", " << x;
            EXPECT_NEAR(picture.coverage(7 * i + x, 3), kLower[x], 1) << i << ", " << x;
            EXPECT_EQ(picture.coverage(7 * i + x, 1), 0);
            EXPECT_EQ(picture.coverage(7 * i + x, 4), 0);
        }
    EXPECT_NEAR(picture.coverage(30, 10), 64, 1);
    EXPECT_NEAR(picture.coverage(0, 20), 128, 1);
}

// From no scratch memory to enough: vertices take some 900 words, and the map 256.
TEST(LoneRectangles, WithoutMemoryNothingIsDrawn)
{
    Shapes shapes;
    for (int i = 0; i < 60; ++i)
        shapes.push_back(rectangle(i % 8 * 8, i / 8 * 8, i % 8 * 8 + 3, i / 8 * 8 + 3));
    Picture whole;
    fill(whole, shapes);
    ASSERT_FALSE(whole.blank());
    int failures = 0;
    for (uint32_t words = 0; words < 3000; words += 100) {
        FailingHeap heap;
        Picture picture;
        picture.context.scratchStack.Destroy();
        picture.context.scratchStack.Create(words);
        heap.failFrom(1);
        fill(picture, shapes);
        const bool failed = heap.calls() != 0;
        heap.failAt(0);
        failures += failed ? 1 : 0;
        EXPECT_EQ(picture.context.outOfMemory, failed ? kScratchExhausted : 0) << words;
        EXPECT_TRUE(failed ? picture.blank() : picture.pixels == whole.pixels) << words;
    }
    EXPECT_TRUE(failures > 10 && failures < 20) << failures;
}

} // namespace
