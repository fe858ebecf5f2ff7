// SPDX-License-Identifier: MIT
// Joins and caps where curves begin and end, and inside them.
#include "tests/support/EncodedPath.h"
#include "tests/support/Picture.h"
#include "tests/support/UserUnits.h"

#include <cmath>
#include <complex>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using Vector = std::complex<double>;

// A stroke under a scale and a turn about the origin, of which only the bounds count.
struct TurnedStroke {
    MMContext2D context;
    Vector turn;

    TurnedStroke(double width, double scale, double degrees)
        : turn(std::polar(scale, degrees * M_PI / 180))
    {
        const Fixed cosine = fx(turn.real()), sine = fx(turn.imag());
        context.transform = {cosine, sine, -sine, cosine, 0, 0};
        context.strokeHalfWidth = fx(width / 2);
        context.fillPaint.paintType = kPaintNone;
        context.strokePaint.paintType = kPaintSolid;
    }
};

// Two curves meet in (131.89, 106.336), in directions (2.239, -13.502) and (3.802, 40.893). With
// outer sides 6 to the left of these they meet in (133.57, 59.55).
TEST(CurveStrokes, MitersFollowTheTangentsAtEveryScale)
{
    const Vector tip(133.57, 59.55);
    EncodedPath path;
    path.points({at(100, 150)})
        .curves({at(117.062, 151.191), at(129.651, 119.838), at(131.89, 106.336),
                 at(135.692, 147.229), at(94.213, 171.341), at(72.282, 200.667)},
                EncodedPath::kOpen);
    for (double scale : {0.5, 1.0, 3.0, 8.0, 40.0})
        for (double degrees : {-30.0, 0.0, 30.0}) { // the tip is the topmost point in all of them
            TurnedStroke stroke(12, scale, degrees);
            stroke.context.miterLimit = 10_fx;
            stroke.context.drawPath(path.data());
            EXPECT_NEAR(stroke.context.boundsMinY / 65536.0, (tip * stroke.turn).imag(), 0.3)
                << scale << ' ' << degrees;
        }
}

// The curve turns back within a few points near (14, 7).
TEST(CurveStrokes, ATightBendIsRoundUnderEveryJoin)
{
    EncodedPath path;
    path.points({at(5, 22)}).curves({at(26, 2), at(2, 2), at(23, 22)}, EncodedPath::kOpen);
    for (uint8_t join : {kJoinMiter, kJoinRound, kJoinBevel})
        for (double scale : {1.0, 2.0, 4.0, 9.0, 30.0}) {
            TurnedStroke stroke(4, scale, 0);
            stroke.context.joinStyle = join;
            stroke.context.miterLimit = 100_fx;
            stroke.context.drawPath(path.data());
            EXPECT_NEAR(stroke.context.boundsMinY / 65536.0 / scale, 5, 0.1)
                << int(join) << ' ' << scale;
        }
}

// A butt cap on a curve that starts upright and ends level does not reach beyond its ends, and
// neither does the join with a closing edge that goes on in the same direction.
TEST(CurveStrokes, CapsFollowTheTangents)
{
    EncodedPath path;
    path.points({at(20, 90)}).curves({at(20, 45), at(35, 20), at(90, 20)}, EncodedPath::kOpen);
    for (double scale : {0.25, 1.0, 7.0}) {
        TurnedStroke stroke(16, scale, 0);
        stroke.context.drawPath(path.data());
        EXPECT_NEAR(stroke.context.boundsMaxY, fx(90 * scale), 4) << scale;
        EXPECT_NEAR(stroke.context.boundsMaxX, fx(90 * scale), 4) << scale;
        EXPECT_NEAR(stroke.context.boundsMinX, fx(12 * scale), 0.05_fx) << scale;
        EXPECT_NEAR(stroke.context.boundsMinY, fx(12 * scale), 0.05_fx) << scale;
    }
}

// A closed curve whose ends meet in one straight line has no join to be seen; its tangents are the
// same whether the end is written twice, and wherever commands without segments stand.
TEST(CurveStrokes, AClosedCurveMeetsItsStart)
{
    EncodedPath once, twice;
    const std::vector<MMPoint2D> round = {at(80, 30), at(80, 80), at(50, 80),
                                          at(20, 80), at(20, 30), at(50, 30)};
    once.points({at(50, 30)}).curves(round, EncodedPath::kClosed);
    twice.curves({at(1, 1), at(2, 2), at(3, 3)}).points({}).points({at(50, 30), at(50, 30)});
    twice.bare(2u << 28 | 5).curves(round).points({at(50, 30)}, EncodedPath::kClosed);
    Picture pictures[2];
    for (int i : {0, 1}) {
        MMContext2D& context = pictures[i].context;
        context.strokeHalfWidth = 9_fx;
        context.fillPaint.paintType = kPaintNone;
        context.strokePaint.paintType = kPaintSolid;
        context.strokePaint.paintColour = 0xFF000000;
        context.drawPath((i == 0 ? once : twice).data());
        EXPECT_NEAR(context.boundsMinY, 21_fx, 0.05_fx);
        EXPECT_FALSE(pictures[i].blank());
    }
    EXPECT_EQ(pictures[0].pixels, pictures[1].pixels);
}

} // namespace
