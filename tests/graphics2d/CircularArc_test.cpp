// Circular arcs against the exact circle.
#include "graphics2d/MMContext2D.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/PolygonModel.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace KAVO::Graphics2D;
using model::toDouble;
using model::toFixed;

MMPoint2D onCircle(const MMPoint2D& centre, double radius, double degrees)
{
    return {centre.x + toFixed(radius * std::cos(degrees * M_PI / 180)),
            centre.y + toFixed(radius * std::sin(degrees * M_PI / 180))};
}

TEST(CircularArc, PointsKeepToTheCircle)
{
    MMContext2D context;
    MMPoint2D centre = {toFixed(10.25), toFixed(-7)};
    for (double radius : {1.0, 2.5, 7.0, 40.0, 150.0, 500.0})
        for (double start : {0.0, 37.0, 181.0, 300.0})
            for (double sweep : {0.5, 45.0, 90.0, 200.0, 359.5})
                for (bool increasing : {false, true})
                    for (int32_t stride : {1, 3, -1}) {
                        MMPoint2D from = onCircle(centre, radius, start);
                        MMPoint2D to =
                            onCircle(centre, radius, increasing ? start + sweep : start - sweep);
                        std::vector<MMPoint2D> buffer(3 * 360);
                        MMPoint2D* out = stride < 0 ? &buffer.back() : buffer.data();
                        context.pointStep = stride;
                        const int32_t result = context.getCircularArcPts(
                            out, centre, from, to, toFixed(radius), increasing);
                        const int32_t count = result / stride;
                        ASSERT_EQ(result % stride, 0);
                        ASSERT_GE(count, 1);
                        ASSERT_LE(count, 360);
                        ASSERT_EQ(out[(count - 1) * stride], to);

                        // Points and the middles of chords are on the circle, and the turns add up.
                        MMPoint2D last = from;
                        double turned = 0;
                        for (int32_t i = 0; i < count; ++i) {
                            const MMPoint2D next = out[i * stride];
                            const double x0 = toDouble(last.x - centre.x),
                                         y0 = toDouble(last.y - centre.y),
                                         x1 = toDouble(next.x - centre.x),
                                         y1 = toDouble(next.y - centre.y);
                            ASSERT_NEAR(std::hypot(x1, y1), radius, 0.01);
                            ASSERT_NEAR(std::hypot(x0 + x1, y0 + y1) / 2, radius, 0.05);
                            turned += std::atan2(x0 * y1 - y0 * x1, x0 * x1 + y0 * y1);
                            last = next;
                        }
                        ASSERT_NEAR(turned * 180 / M_PI, increasing ? sweep : -sweep, 0.01);
                    }
}

struct Canvas {
    static constexpr int kSize = 100;
    std::vector<Pixel> pixels = std::vector<Pixel>(kSize * kSize, 0xFFFFFFFF);
    MMContext2D context;

    Canvas()
    {
        context.target = {kSize, kSize, kSize * 4, 0, pixels.data(), 0};
        context.clipRight = kSize;
        context.clipBottom = kSize;
        context.fillPaint.paintColour = 0xFF0000FF;
        context.strokePaint = context.fillPaint;
        context.strokePaint.paintColour = 0xFFFF0000;
        context.strokeHalfWidth = toFixed(2);
    }
    Pixel at(double x, double y) const { return pixels[std::size_t(int(y) * kSize + int(x))]; }
};

TEST(CircularArc, EveryCombinationFillsAndStrokesWhatItCloses)
{
    // Probes by angle and distance from the centre (50, 50), for an arc of radius 30 from 10
    // degrees through 110: on the arc, within the segment, in the triangle, on the chord, on both
    // spokes, and beyond the arc's end.
    enum Colour { kBlank, kFilled, kStroked };
    const Pixel pixel[] = {0xFFFFFFFF, 0xFF0000FF, 0xFFFF0000};
    const double chord = 30 * std::cos(50 * M_PI / 180);
    const struct {
        double angle, distance;
        Colour want[2][2]; // by outline, pie
        Colour whole;
    } probes[] = {{60, 30, {{kStroked, kStroked}, {kStroked, kStroked}}, kStroked},
                  {60, 25, {{kFilled, kFilled}, {kBlank, kBlank}}, kFilled},
                  {60, 10, {{kBlank, kFilled}, {kBlank, kBlank}}, kFilled},
                  {60, chord, {{kStroked, kFilled}, {kBlank, kBlank}}, kFilled},
                  {10, 15, {{kBlank, kStroked}, {kBlank, kBlank}}, kFilled},
                  {110, 15, {{kBlank, kStroked}, {kBlank, kBlank}}, kFilled},
                  {240, 30, {{kBlank, kBlank}, {kBlank, kBlank}}, kStroked}};
    for (bool backward : {false, true})
        for (bool whole : {false, true})
            for (uint8_t outline : {0, 1})
                for (uint8_t pie : {0, 1}) {
                    Canvas canvas;
                    MMPoint2D centre = {toFixed(50), toFixed(50)};
                    const int sweep = whole ? 400 : 100;
                    canvas.context.drawCircularArc(
                        &centre, toFixed(30), (backward ? 110 : 10) * kFixedOne,
                        (backward ? -sweep : sweep) * kFixedOne, pie, outline);
                    for (const auto& p : probes) {
                        Colour want = whole ? p.whole : p.want[outline][pie];
                        if (outline && want == kFilled) want = kBlank;
                        const double a = p.angle * M_PI / 180;
                        EXPECT_EQ(
                            canvas.at(50 + p.distance * std::cos(a), 50 + p.distance * std::sin(a)),
                            pixel[want])
                            << "angle " << p.angle << " distance " << p.distance << " outline "
                            << int(outline) << " pie " << int(pie) << " whole " << whole;
                    }
                    if (whole) {
                        EXPECT_NEAR(toDouble(canvas.context.boundsMinX), 18, 0.05);
                        EXPECT_NEAR(toDouble(canvas.context.boundsMaxY), 82, 0.05);
                    }
                }
}

TEST(CircularArc, BadInputDrawsNothingAndHarmsNothing)
{
    Canvas canvas;
    MMPoint2D centre = {toFixed(50), toFixed(50)};
    canvas.context.drawCircularArc(nullptr, toFixed(10), 0, kDegrees90, 1, 0);
    for (Fixed radius : {0, -kFixedOne, INT32_MIN})
        canvas.context.drawCircularArc(&centre, radius, 0, kDegrees90, 1, 0);
    EXPECT_EQ(canvas.context.boundsMinX, kEmptyBoundsMin);
    EXPECT_EQ(std::count(canvas.pixels.begin(), canvas.pixels.end(), 0xFFFFFFFFu), 10000);
    for (Degrees angle : {INT32_MIN, INT32_MAX, 0, 1, -1})
        for (Degrees sweep : {INT32_MIN, INT32_MAX, 0, 1, -1})
            canvas.context.drawCircularArc(&centre, INT32_MAX, angle, sweep, 1, 0);

    failEachAllocation([&centre] {
        Canvas drawn;
        drawn.context.drawCircularArc(&centre, toFixed(30), 0, kDegrees90, 1, 0);
        EXPECT_TRUE(drawn.at(52, 52) != 0xFFFFFFFF ||
                    drawn.context.outOfMemory == kScratchExhausted);
    });
}

} // namespace
