// SPDX-License-Identifier: MIT
// Shapes of several contours against the one polygon that walks through all of them, and the work
// and the memory that they take.
#include "graphics2d/raster/Rasteriser.h"
#include "tests/graphics2d/raster/RasterShapes.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/Picture.h"

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using namespace model;

constexpr int kSize = 100;

using Shapes = std::vector<Polygon>;

BoundsUnion fill(Picture& picture, const Shapes& shapes, MMFillRule rule = kFillNonZero)
{
    Polygon points;
    std::vector<uint32_t> ends;
    for (const Polygon& shape : shapes) {
        points.insert(points.end(), shape.begin(), shape.end());
        ends.push_back(uint32_t(points.size()));
    }
    return fillContours(picture.context, {points.data(), ends.data(), uint32_t(ends.size())}, rule,
                        ThinShapes::kOneSpan);
}

// Some triangles, boxes and stars, now and then lines, points and level contours, which hold
// nothing; some reach far out of the picture.
Shapes randomShapes(std::mt19937& random)
{
    const auto number = [&](double low, double high) {
        return low + (high - low) * (random() / 4294967296.0);
    };
    Shapes shapes(2 + random() % 8);
    for (Polygon& shape : shapes) {
        const double x = number(-20, 120), y = number(-20, 120);
        const double size = random() % 8 == 0 ? 30000 : number(0.2, 40);
        switch (random() % 6) {
        case 0:
            shape = rectangle(x, y, x + size, y + number(0.2, 40));
            break;
        case 1:
            shape = star(x, y, size, 5 + int(random() % 4) * 2, 2);
            break;
        case 2:
            for (uint32_t i = random() % 3; i-- > 0;)
                add(shape, x + number(0, size), y + number(0, size));
            break;
        case 3:
            for (uint32_t i = random() % 5; i-- > 0;)
                add(shape, x + number(0, size), y);
            break;
        default:
            for (uint32_t i = 3 + random() % 6; i-- > 0;)
                add(shape, x + number(0, size), y + number(0, size));
        }
    }
    return shapes;
}

std::string listOf(const Shapes& shapes)
{
    std::string text;
    for (const Polygon& shape : shapes) {
        for (const MMPoint2D& p : shape)
            text += " (" + std::to_string(p.x) + ", " + std::to_string(p.y) + ")";
        text += ";";
    }
    return text;
}

TEST(RasterContours, SharpPixelsAndBoundsAreThoseOfTheBridgedPolygon)
{
    std::mt19937 random(21);
    for (int n = 0; n < 1500; ++n) {
        Shapes shapes = randomShapes(random);
        Shapes withPoints;
        for (const Polygon& shape : shapes)
            if (!shape.empty()) withPoints.push_back(shape);
        if (withPoints.size() < 2) continue;
        Polygon polygon = bridged(withPoints);
        Picture apart(kSize), joined(kSize);
        apart.context.antiAlias = joined.context.antiAlias = 0;
        joined.context.fillRule = n % 2 == 0 ? kFillNonZero : kFillEvenOdd;
        joined.context.rasterComplexPolygon(polygon.data(), uint16_t(polygon.size()));
        const BoundsUnion bounds = fill(apart, shapes, MMFillRule(joined.context.fillRule));
        ASSERT_TRUE(apart.pixels == joined.pixels) << listOf(shapes);
        ASSERT_TRUE(bounds.empty() || (bounds.minX == joined.context.boundsMinX &&
                                       bounds.maxY == joined.context.boundsMaxY))
            << listOf(shapes);
    }
}

TEST(RasterContours, CoverageIsTheAreaOfAllContours)
{
    std::mt19937 random(22);
    for (int n = 0; n < 60; ++n) {
        Shapes shapes = randomShapes(random);
        for (Polygon& shape : shapes) // no thin ones
            for (MMPoint2D& p : shape)
                p.y = std::clamp(p.y, -20 * kFixedOne, 200 * kFixedOne);
        shapes.push_back(rectangle(10, 20, 14, 70));
        shapes.push_back(rectangle(50, 20, 54, 70));
        Edges edges;
        for (const Polygon& shape : shapes) {
            const Edges more = edgesOf(shape);
            edges.insert(edges.end(), more.begin(), more.end());
        }
        Picture picture(kSize);
        fill(picture, shapes);
        const auto ideal = areas(edges, kSize, kSize, false, 128);
        for (int i = 0; i < kSize * kSize; ++i)
            ASSERT_NEAR(picture.coverage(i % kSize, i / kSize), ideal[size_t(i)] * 255, 16)
                << i % kSize << ", " << i / kSize << " of" << listOf(shapes);
    }
}

// The left side of the upper triangle ends where the upright one of the lower triangle starts, in
// the middle of row 20: they do not meet, and yet neither changes what is inside beside the other.
TEST(RasterContours, TrianglesThatTouchWithinARowAreBothFilled)
{
    const Polygon upper = points({{10, 10}, {20, 10}, {15, 20}});
    for (const double side : {-9, 9})
        for (const MMFillRule rule : {kFillNonZero, kFillEvenOdd}) {
            const Polygon lower = points({{15, 20}, {15, 30}, {15 + side, 30}});
            Edges edges = edgesOf(upper);
            const Edges more = edgesOf(lower);
            edges.insert(edges.end(), more.begin(), more.end());
            Picture picture(kSize);
            fill(picture, {upper, lower}, rule);
            const auto ideal = areas(edges, kSize, kSize, rule == kFillEvenOdd, 512);
            for (int i = 0; i < kSize * kSize; ++i)
                ASSERT_NEAR(picture.coverage(i % kSize, i / kSize), ideal[size_t(i)] * 255, 3)
                    << i % kSize << ", " << i / kSize << " side " << side << " rule " << rule;
        }
}

// One polygon through both triangles would change its direction twice and be one span.
TEST(RasterContours, TheThinRuleServesASingleContour)
{
    const Polygon left = points({{2, 1.1}, {10, 1.4}, {2, 1.4}});
    const Polygon right = points({{50, 1.05}, {60, 1.05}, {55, 0.7}});
    Picture both(kSize);
    fill(both, {left, right});
    EXPECT_EQ(both.coverage(5, 1), 48);
    EXPECT_EQ(both.coverage(30, 1), 0);
    EXPECT_NEAR(both.coverage(55, 1), 85, 1); // 0.35 less two corners

    // Beside a line and a point it is alone, with its own height and ends.
    Picture alone(kSize);
    const BoundsUnion bounds = fill(alone, {points({{1, 90}}), left, points({{70, 5}, {80, 9}})});
    EXPECT_EQ(bounds.minX, 1 * kFixedOne);
    EXPECT_EQ(bounds.maxY, 90 * kFixedOne);
    for (int x = 0; x < kSize; ++x)
        EXPECT_EQ(alone.coverage(x, 1), x >= 2 && x < 10 ? 75 : 0) << x; // 255 * 76 >> 8
}

TEST(RasterContours, WithoutThreeDifferentPointsNothingIsDrawn)
{
    const Polygon line = points({{10, 10.1}, {60, 10.3}});
    const Polygon thereAndBack = points({{10, 10.1}, {60, 10.3}, {10, 10.1}, {60, 10.3}});
    for (bool antiAlias : {false, true}) {
        Picture picture(kSize);
        picture.context.antiAlias = antiAlias;
        EXPECT_FALSE(fill(picture, {thereAndBack, points({{5, 5}})}).empty());
        EXPECT_FALSE(fill(picture, {line, line, line}).empty());
        EXPECT_TRUE(fill(picture, {line}).empty());
        EXPECT_TRUE(fill(picture, {points({{1, 5}, {9, 5}}), points({{20, 5}})}).empty());
        EXPECT_TRUE(fill(picture, {}).empty());
        EXPECT_TRUE(picture.blank());
    }
}

TEST(RasterContours, SteadyDrawingMakesNoHeapCalls)
{
    std::mt19937 random(23);
    Shapes shapes = randomShapes(random);
    for (int i = 0; i < 200; ++i)
        shapes.push_back(rectangle(random() % 90, random() % 90, 95, 95));
    Picture picture(kSize);
    fill(picture, shapes);
    fill(picture, shapes);
    FailingHeap heap;
    fill(picture, shapes);
    EXPECT_EQ(heap.calls(), 0u);
}

} // namespace
