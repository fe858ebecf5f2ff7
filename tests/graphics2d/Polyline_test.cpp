// Strokes against the exact union of their pieces, and strokes of hostile lines.
#include "graphics2d/MMContext2D.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/StrokeModel.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>

namespace {

using namespace KAVO::Graphics2D;
using model::toFixed;
using model::Vector;
using Line = std::vector<Vector>;

model::Polygon fixedPoints(const Line& line)
{
    model::Polygon points;
    for (Vector v : line)
        model::add(points, v.real(), v.imag());
    return points;
}

// White on black, with guard rows above and below.
struct Canvas {
    static constexpr int kSize = 128;
    static constexpr int kGuard = 4;
    std::vector<Pixel> pixels = std::vector<Pixel>(kSize * (kSize + 2 * kGuard), 0xFF000000);
    MMContext2D context;

    Canvas()
    {
        context.target = {kSize, kSize, kSize * 4, 0, pixels.data() + kSize * kGuard, 0};
        context.clipRight = kSize;
        context.clipBottom = kSize;
        context.antiAlias = 1;
        context.currentPaint = context.fillPaint;
        context.currentPaint.paintColour = 0xFFFFFFFF;
    }
    void stroke(std::vector<MMPoint2D> points, bool closed = false)
    {
        MMLinkPath record = {points.data(), static_cast<uint32_t>(points.size())};
        context.drawPolyline(&record, 1, closed);
        for (int i = 0; i < kSize * kGuard; ++i) {
            ASSERT_EQ(pixels[std::size_t(i)], 0xFF000000u);
            ASSERT_EQ(pixels[pixels.size() - 1 - std::size_t(i)], 0xFF000000u);
        }
        ASSERT_EQ(context.scratchStack.usedWords, 0u);
    }
    void stroke(const Line& line, bool closed = false) { stroke(fixedPoints(line), closed); }
    int at(int x, int y) const { return int(pixels[std::size_t((y + kGuard) * kSize + x)] & 0xFF); }
    int lit() const
    {
        int count = 0;
        for (Pixel p : pixels)
            count += p != 0xFF000000 ? 1 : 0;
        return count;
    }
    bool emptyBounds() const
    {
        return context.boundsMinX == kEmptyBoundsMin && context.boundsMinY == kEmptyBoundsMin &&
               context.boundsMaxX == kEmptyBoundsMax && context.boundsMaxY == kEmptyBoundsMax;
    }
};

Matrix2D matrixOf(double a, double b, double c, double d)
{
    return {toFixed(a), toFixed(b), toFixed(c), toFixed(d), toFixed(64.3), toFixed(63.8)};
}

TEST(Polyline, MatchesUnionOfSegmentsJoinsAndCaps)
{
    Line arc, saw;
    for (int i = 0; i <= 24; ++i)
        arc.push_back(std::polar(14.0, i * 0.18));
    for (int i = 0; i <= 16; ++i) // segments far shorter than most pens are wide
        saw.emplace_back(i * 1.1 - 12, i % 2 * 1.7 - 0.4 * i);
    const struct {
        const char* name;
        Line line;
        bool closed;
    } lines[] = {{"zigzag", {{-15, -9}, {12, -13}, {-9, 4}, {16, 9}, {16.5, 14}, {-3, 15}}, false},
                 {"triangle", {{-14, -11}, {15, -7}, {-2, 13}}, true},
                 {"right angles", {{-12, -10}, {13, -10}, {13, 12}, {-12, 12}}, true},
                 {"near reversal", {{-15, 2}, {14, 3}, {-13, 4.1}}, false},
                 {"reversal", {{-15, 2}, {14, 2}, {-3, 2}}, false},
                 {"arc", arc, false},
                 {"saw", saw, false}};
    const struct {
        const char* name;
        Matrix2D matrix;
    } transforms[] = {{"plain", matrixOf(1, 0, 0, 1)},
                      {"stretched", matrixOf(3, 0, 0, 1)},
                      {"turned", matrixOf(1.2, 0.9, -0.9, 1.2)},
                      {"mirrored", matrixOf(-1.5, 0.3, 0.2, 1.1)}};

    for (const auto& l : lines)
        for (const auto& t : transforms)
            for (double width : {0.25, 1.0, 3.0, 9.0, 25.0, 60.0})
                for (int style = 0; style < 3; ++style) {
                    Canvas canvas;
                    canvas.context.transform = t.matrix;
                    canvas.context.strokeHalfWidth = toFixed(width / 2);
                    canvas.context.joinStyle = static_cast<uint8_t>(style);
                    canvas.context.capStyle = static_cast<uint8_t>(2 - style);
                    canvas.stroke(l.line, l.closed);
                    const auto ideal = model::Stroke(canvas.context, l.line, l.closed)
                                           .areas(Canvas::kSize, Canvas::kSize);
                    double sum = 0;
                    int edges = 0;
                    for (int i = 0; i < Canvas::kSize * Canvas::kSize; ++i) {
                        const double wanted = ideal[std::size_t(i)] * 255;
                        const double error =
                            std::abs(canvas.at(i % Canvas::kSize, i / Canvas::kSize) - wanted);
                        if (error < 0.5 && (wanted < 0.01 || wanted > 254.99)) continue;
                        sum += error;
                        ++edges;
                    }
                    // The fill's own error is 0.4. No edges: the stroke covers the whole canvas.
                    EXPECT_LE(sum, 1.4 * edges) << l.name << " " << t.name << " width " << width
                                                << " style " << style << " mean " << sum / edges;
                }
}

TEST(Polyline, CrossingItselfTurnsNoDarker)
{
    Canvas canvas;
    canvas.context.currentPaint.paintOpacity = 128;
    canvas.context.strokeHalfWidth = toFixed(5);
    canvas.context.joinStyle = kJoinRound;
    canvas.stroke(Line{{10, 60}, {115, 60}, {60, 110}, {60, 10}, {66, 112}});
    const int once = canvas.at(20, 60);
    EXPECT_NEAR(once, 128, 1);
    for (int i = 0; i < Canvas::kSize * Canvas::kSize; ++i)
        ASSERT_LE(canvas.at(i % Canvas::kSize, i / Canvas::kSize), once) << i;
}

TEST(Polyline, WithoutAntiAliasingIsNeverBroken)
{
    const double scales[][2] = {{1, 1}, {3, 0.05}, {0.01, 2}, {-0.2, 0.2}, {1, 0}};
    for (const auto& scale : scales)
        for (int slope = -8; slope <= 8; ++slope)
            for (bool steep : {false, true})
                for (double shift : {0.0, 0.125, 0.5, 0.77}) {
                    Canvas canvas;
                    canvas.context.antiAlias = 0;
                    canvas.context.strokeHalfWidth = toFixed(0.02);
                    canvas.context.transform = matrixOf(scale[0], 0, 0, scale[1]);
                    const double x = 45, y = slope * 5.3;
                    const Vector end = steep ? Vector(y, x) : Vector(x, y);
                    const auto user = [&](Vector v) {
                        return Vector(v.real() / scale[0], scale[1] == 0 ? 0 : v.imag() / scale[1]);
                    };
                    canvas.stroke(Line{user(-end + shift), user(end + shift)});
                    if (scale[1] == 0 && steep) continue;
                    for (int i = 25; i < 100; ++i) { // one pixel in each column or row, rarely two
                        int across = 0;
                        for (int j = 0; j < Canvas::kSize; ++j)
                            across += (steep ? canvas.at(j, i) : canvas.at(i, j)) != 0 ? 1 : 0;
                        ASSERT_GE(across, 1)
                            << scale[0] << " " << slope << " " << steep << " " << i;
                        ASSERT_LE(across, 2)
                            << scale[0] << " " << slope << " " << steep << " " << i;
                    }
                }
}

TEST(Polyline, LineWithoutLengthLeavesItsCaps)
{
    for (uint8_t cap : {kCapButt, kCapRound, kCapSquare})
        for (bool closed : {false, true})
            for (bool antiAlias : {false, true}) {
                Canvas canvas;
                canvas.context.antiAlias = antiAlias;
                canvas.context.capStyle = cap;
                canvas.context.strokeHalfWidth = toFixed(10);
                canvas.stroke(Line{{50, 60}, {50, 60}, {50, 60}}, closed);
                EXPECT_EQ(canvas.at(50, 60) != 0, cap != kCapButt);
                EXPECT_EQ(canvas.at(58, 68) != 0, cap == kCapSquare);
                EXPECT_EQ(canvas.emptyBounds(), cap == kCapButt);
                if (cap == kCapButt) continue;
                EXPECT_EQ(canvas.context.boundsMaxX, toFixed(60));
                EXPECT_NEAR(model::toDouble(canvas.context.boundsMinY), 50, 0.01);
            }
}

TEST(Polyline, MiterLimitIsTheRatioOfLengthToWidth)
{
    // A right angle's miter is sqrt(2) long; smooth turns keep theirs whatever the limit.
    const struct {
        double limit;
        Line line;
        double top;
    } cases[] = {{1.42, {{20, 50}, {50, 20}, {80, 50}}, 20 - 10 * M_SQRT2},
                 {1.41, {{20, 50}, {50, 20}, {80, 50}}, 20 - 10 * M_SQRT1_2},
                 {0, {{20, 50}, {50, 20}, {80, 50}}, 20 - 10 * M_SQRT1_2},
                 {0, {{20, 50}, {50, 48}, {80, 50}}, 48 - 10 * std::hypot(1, 1 / 15.0)},
                 {32767, {{50, 100}, {50.5, 50}, {51, 100}}, 50 - 10 * std::hypot(100, 1)}};
    for (const auto& c : cases) {
        Canvas canvas;
        canvas.context.strokeHalfWidth = toFixed(10);
        canvas.context.miterLimit = toFixed(c.limit);
        canvas.stroke(c.line);
        EXPECT_NEAR(model::toDouble(canvas.context.boundsMinY), c.top, 0.01) << c.limit;
    }
}

TEST(Polyline, HostileInputDrawsInsideTheTargetAndEnds)
{
    std::mt19937 random(3);
    const Fixed odd[] = {0,       1,           -1,          kFixedOne,    INT_MAX,
                         INT_MIN, INT_MIN + 1, toFixed(64), toFixed(-64), toFixed(20000)};
    const auto pick = [&] { return odd[random() % 10]; };
    for (int round = 0; round < 3000; ++round) {
        Canvas canvas;
        MMContext2D& c = canvas.context;
        c.antiAlias = random() & 1;
        c.joinStyle = static_cast<uint8_t>(random() % 4);
        c.capStyle = static_cast<uint8_t>(random() % 4);
        c.strokeHalfWidth = pick();
        c.miterLimit = pick();
        if (random() & 1) c.transform = {pick(), pick(), pick(), pick(), pick(), pick()};
        std::vector<MMPoint2D> points(random() % 6);
        for (MMPoint2D& p : points)
            p = {pick(), pick()};
        canvas.stroke(points, random() & 1);
        if (c.strokeHalfWidth <= 0 || points.empty()) {
            EXPECT_TRUE(canvas.emptyBounds());
            EXPECT_EQ(canvas.lit(), 0);
        }
    }
}

TEST(Polyline, VeryLongLineTakesMemoryInProportion)
{
    std::vector<MMPoint2D> points(60000); // to and fro, a little lower each time
    for (int i = 0; i < 60000; ++i)
        points[std::size_t(i)] = {toFixed(i % 200 < 100 ? i % 100 : 99 - i % 100), i * 140};
    for (double width : {0.5, 3000.0}) {
        Canvas canvas;
        canvas.context.joinStyle = kJoinRound;
        canvas.context.strokeHalfWidth = toFixed(width);
        canvas.stroke(points);
        EXPECT_EQ(canvas.context.outOfMemory, 0);
        EXPECT_EQ(canvas.at(64, 63), 255);
    }
}

TEST(Polyline, ExhaustedMemoryIsReportedAndNothingLeaks)
{
    for (bool antiAlias : {false, true}) { // without: pen and hairline in one polygon
        const uint32_t calls = failEachAllocation([antiAlias] {
            Canvas canvas;
            canvas.context.antiAlias = antiAlias;
            canvas.context.transform = matrixOf(3, 0, 0, 0.05);
            canvas.context.joinStyle = kJoinRound;
            canvas.context.capStyle = kCapRound;
            canvas.context.strokeHalfWidth = toFixed(4);
            Line line;
            for (int i = 0; i < 400; ++i)
                line.emplace_back(i % 2 * 20, i % 7);
            canvas.stroke(line);
            EXPECT_TRUE(canvas.lit() > 0 || canvas.context.outOfMemory == kScratchExhausted);
        });
        EXPECT_GT(calls, 3u);
    }
}

} // namespace
