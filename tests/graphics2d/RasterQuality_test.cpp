// Edges of filled polygons against exact areas and exact winding numbers.
#include "tests/graphics2d/RasterCanvas.h"

#include <gtest/gtest.h>

namespace {

using namespace rastertest;

struct RuledCanvas : Canvas {
    explicit RuledCanvas(bool evenOdd, bool antiAlias)
    {
        context.fillRule = evenOdd ? kFillEvenOdd : kFillNonZero;
        context.antiAlias = antiAlias;
    }
};

// Whether a centre lies in one of a row's spans; those on a right edge do.
bool isIn(const std::vector<std::pair<double, double>>& spans, double c)
{
    return std::any_of(spans.begin(), spans.end(),
                       [c](auto& span) { return span.first < c && c <= span.second; });
}

TEST(RasterQuality, CoverageIsTheArea)
{
    for (const Shape& shape : shapes()) {
        for (bool evenOdd : {false, true}) {
            RuledCanvas canvas(evenOdd, true);
            canvas.fill(shape.polygon);
            const std::vector<double> areas = model::areas(shape.polygon, kWidth, kHeight, evenOdd);
            double sum = 0, worst = 0;
            int edgePixels = 0, worstAt = 0;
            for (int i = 0; i < kWidth * kHeight; ++i) {
                const double area = areas[std::size_t(i)];
                const double error = std::abs(area * 255 - canvas.at(i % kWidth, i / kWidth));
                if (error > worst) {
                    worst = error;
                    worstAt = i;
                }
                if (area <= 1e-6 || area >= 1 - 1e-6) continue;
                sum += error;
                ++edgePixels;
            }
            EXPECT_LE(sum / edgePixels, shape.mean) << shape.name << " even-odd " << evenOdd;
            EXPECT_LE(worst, shape.worst) << shape.name << " even-odd " << evenOdd << " at "
                                          << worstAt % kWidth << ", " << worstAt / kWidth;
        }
    }
}

TEST(RasterQuality, SharpPixelsAreTheWindingAtTheirCentres)
{
    for (const Shape& shape : shapes()) {
        for (bool evenOdd : {false, true}) {
            RuledCanvas canvas(evenOdd, false);
            canvas.fill(shape.polygon);
            for (int y = 0; y < kHeight; ++y) {
                const auto spans = model::spans(shape.polygon, y + 0.5, evenOdd);
                for (int x = 0; x < kWidth; ++x) {
                    const double c = x + 0.5;
                    if (isIn(spans, c) == (canvas.at(x, y) != 0)) continue;
                    EXPECT_LE(model::distanceToOutline(shape.polygon, c, y + 0.5),
                              (kHeight + 2) / 65536.0)
                        << shape.name << " even-odd " << evenOdd << " at " << x << ", " << y;
                }
            }
        }
    }
}

// Outlines on half pixels put many centres exactly on edges.
TEST(RasterQuality, CentresOnEdgesBelongToTheRightAndUpperNeighbour)
{
    std::mt19937 random(11);
    for (int n = 0; n < 300; ++n) {
        Polygon polygon;
        double x = 20, y = 20;
        for (int i = 0; i < 12; ++i) {
            model::add(polygon, x, y);
            (i % 2 == 0 ? x : y) = 1 + (random() % 60) * 0.5;
        }
        model::add(polygon, x, 20); // and back along the grid
        const bool evenOdd = n % 2 != 0;
        RuledCanvas canvas(evenOdd, false);
        canvas.fill(polygon);
        for (int row = 0; row < 40; ++row) {
            const auto spans = model::spans(polygon, row + 0.5, evenOdd);
            for (int c = 0; c < 40; ++c) {
                ASSERT_EQ(canvas.at(c, row) != 0, isIn(spans, c + 0.5))
                    << "polygon " << n << " at " << c << ", " << row;
            }
        }
    }
}

// Two chains with random steps, some of them horizontal or on half rows.
Polygon randomMonotone(std::mt19937& random)
{
    const auto chain = [&](double x) {
        Polygon p;
        for (double y = 5; y < 100; y += (random() % 40) * 0.25)
            model::add(p, x + (random() % 100) * 0.3, y);
        return p;
    };
    Polygon left = chain(5);
    const Polygon right = model::reversed(chain(40));
    model::add(left, 40, 110.5);
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST(RasterQuality, BothRasterisersAgreeOnMonotonePolygons)
{
    std::mt19937 random(5);
    for (int n = 0; n < 200; ++n) {
        Polygon polygon = randomMonotone(random);
        const uint16_t count = static_cast<uint16_t>(polygon.size());
        for (uint8_t antiAlias : {0, 1}) {
            Canvas one, other;
            one.context.antiAlias = other.context.antiAlias = antiAlias;
            one.context.rasterMonotonePolygon(polygon.data(), count);
            other.context.rasterComplexPolygon(polygon.data(), count);
            for (int i = 0; i < kWidth * kHeight; ++i)
                ASSERT_LE(
                    std::abs(one.at(i % kWidth, i / kWidth) - other.at(i % kWidth, i / kWidth)),
                    antiAlias)
                    << "polygon " << n << " at " << i % kWidth << ", " << i / kWidth;
        }
    }
}

TEST(RasterQuality, NoPixelIsDrawnTwice)
{
    for (const Shape& shape : shapes()) {
        const auto areas = model::areas(shape.polygon, kWidth, kHeight, false, 8);
        Canvas once;
        once.context.currentPaint.paintType = kPaintXOR;
        once.fill(shape.polygon);
        Canvas half;
        half.context.currentPaint.paintOpacity = 128;
        half.fill(shape.polygon);
        for (int i = 0; i < kWidth * kHeight; ++i) {
            const int x = i % kWidth, y = i / kWidth;
            if (areas[std::size_t(i)] > 0.1) {
                ASSERT_EQ(once.at(x, y), 0xFF) << shape.name << " at " << x << ", " << y;
            }
            ASSERT_LE(half.at(x, y), 128) << shape.name << " at " << x << ", " << y;
        }
        once.fill(shape.polygon);
        for (int i = 0; i < kWidth * kHeight; ++i)
            ASSERT_EQ(once.at(i % kWidth, i / kWidth), 0) << shape.name;
    }
}

TEST(RasterQuality, ShapesThatShareAnOutlineLeaveNoGap)
{
    for (unsigned seed = 0; seed < 20; ++seed) {
        std::mt19937 random(seed);
        Polygon left, right;
        model::add(left, 5, 5);
        model::add(right, 120, 5);
        for (int i = 0; i <= 12; ++i) {
            const double x = 40 + (random() % 4000) * 0.01;
            const double y = i == 0 ? 5 : i == 12 ? 110 : i * 9 + (random() % 3000) * 0.01 - 15;
            model::add(left, x, std::clamp(y, 5.0, 110.0));
        }
        right.insert(right.end(), left.begin() + 1, left.end());
        model::add(left, 5, 110);
        model::add(right, 120, 110);
        // Folds of the shared outline would count twice; nesting by winding needs simple shapes.
        RuledCanvas a(true, true), b(true, true);
        a.fill(left);
        b.fill(model::reversed(right));
        for (int y = 7; y < 108; ++y)
            for (int x = 7; x < 118; ++x)
                ASSERT_NEAR(a.at(x, y) + b.at(x, y), 255, 2)
                    << "seed " << seed << " at " << x << ", " << y;
    }
}

} // namespace
