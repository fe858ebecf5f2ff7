// SPDX-License-Identifier: MIT
// Circular arcs against the exact circle.
#include "tests/support/Picture.h"
#include "tests/support/UserUnits.h"

#include <complex>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using Vector = std::complex<double>;

constexpr double kRadian = 180 / M_PI;

// Points and the middles of chords are on the circle, the turns add up, and the last point is
// exact.
TEST(CircularArc, PointsKeepToTheCircle)
{
    MMContext2D context;
    MMPoint2D centre = at(10.25, -7);
    const auto around = [centre](MMPoint2D p) {
        return Vector(p.x - centre.x, p.y - centre.y) / 65536.0;
    };
    const auto onCircle = [centre](double radius, double degrees) {
        const Vector v = std::polar(radius, degrees / kRadian);
        return MMPoint2D{centre.x + fx(v.real()), centre.y + fx(v.imag())};
    };
    for (double radius : {1.0, 2.5, 7.0, 40.0, 150.0, 500.0})
        for (double start : {0.0, 37.0, 181.0, 300.0})
            for (double sweep : {0.5, 45.0, 90.0, 200.0, 359.5, -0.5, -45.0, -200.0, -359.5})
                for (int32_t stride : {1, 3, -1}) {
                    MMPoint2D from = onCircle(radius, start), to = onCircle(radius, start + sweep);
                    std::vector<MMPoint2D> buffer(3 * 360);
                    MMPoint2D* out = stride < 0 ? &buffer.back() : buffer.data();
                    context.pointStep = stride;
                    const int32_t count =
                        context.getCircularArcPts(out, centre, from, to, fx(radius), sweep > 0) /
                        stride;
                    ASSERT_TRUE(count >= 1 && count <= 360);
                    ASSERT_EQ(out[(count - 1) * stride], to);
                    Vector last = around(from);
                    double turned = 0;
                    for (int32_t i = 0; i < count; ++i) {
                        const Vector next = around(out[i * stride]);
                        ASSERT_NEAR(std::abs(next), radius, 0.01);
                        ASSERT_NEAR(std::abs(last + next) / 2, radius, 0.05);
                        turned += std::arg(next / last);
                        last = next;
                    }
                    ASSERT_NEAR(turned * kRadian, sweep, 0.01);
                }
}

// A picture with a blue fill and a red stroke 4 units wide.
struct ArcPicture : Picture {
    MMPoint2D centre = ::at(50, 50);

    ArcPicture() : Picture(100)
    {
        context.antiAlias = 0;
        context.fillPaint.paintColour = 0xFF0000FF;
        context.strokePaint = context.fillPaint;
        context.strokePaint.paintColour = 0xFFFF0000;
        context.strokeHalfWidth = 2_fx;
    }
};

TEST(CircularArc, EveryCombinationFillsAndStrokesWhatItCloses)
{
    // Probes by angle and distance from the centre, for an arc of radius 30 from 10 degrees through
    // 110: on the arc, within the segment, in the triangle, on the chord, on both spokes, and
    // beyond the arc's end.
    enum Colour { kBlank, kFilled, kStroked };
    const Pixel pixel[] = {Picture::kBlank, 0xFF0000FF, 0xFFFF0000};
    const struct {
        double angle, distance;
        Colour chord, pie, open, whole;
    } probes[] = {{60, 30, kStroked, kStroked, kStroked, kStroked},
                  {60, 25, kFilled, kFilled, kBlank, kFilled},
                  {60, 10, kBlank, kFilled, kBlank, kFilled},
                  {60, 30 * std::cos(50 / kRadian), kStroked, kFilled, kBlank, kFilled},
                  {10, 15, kBlank, kStroked, kBlank, kFilled},
                  {110, 15, kBlank, kStroked, kBlank, kFilled},
                  {240, 30, kBlank, kBlank, kBlank, kStroked}};
    for (int turn : {0, 50}) // of it all
        for (bool whole : {false, true})
            for (uint8_t outline : {0, 1})
                for (uint8_t pie : {0, 1}) {
                    ArcPicture picture;
                    const int sweep = whole ? 400 : 100;
                    const bool backward = turn != 0;
                    picture.context.drawCircularArc(
                        &picture.centre, 30_fx, (turn + (backward ? 110 : 10)) * kFixedOne,
                        (backward ? -sweep : sweep) * kFixedOne, pie, outline);
                    for (const auto& p : probes) {
                        Colour want = whole ? p.whole : outline ? p.open : pie ? p.pie : p.chord;
                        if (outline && want == kFilled) want = kBlank;
                        const Vector v = std::polar(p.distance, (turn + p.angle) / kRadian);
                        EXPECT_EQ(picture.at(int(50 + v.real()), int(50 + v.imag())), pixel[want])
                            << "angle " << p.angle << " distance " << p.distance << " outline "
                            << int(outline) << " pie " << int(pie) << " whole " << whole;
                    }
                    if (!whole) continue;
                    EXPECT_NEAR(picture.context.boundsMinX, 18_fx, 0.05_fx);
                    EXPECT_NEAR(picture.context.boundsMaxY, 82_fx, 0.05_fx);
                }
}

} // namespace
