// SPDX-License-Identifier: MIT
// Rounded rectangles: which points the outline has, and what the call leaves behind.
#include "tests/support/FailingHeap.h"
#include "tests/support/Picture.h"
#include "tests/support/StrokeRecorder.h"
#include "tests/support/UserUnits.h"

#include <cmath>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using Points = std::vector<MMPoint2D>;

struct EllipticalRect : testing::Test, Picture {
    EllipticalRect()
    {
        context.antiAlias = 0;
        context.strokePaint.paintType = kPaintSolid;
        context.strokePaint.paintColour = 0xFF123456;
        context.joinStyle = kJoinBevel;
    }
    ~EllipticalRect() override { EXPECT_EQ(context.joinStyle, kJoinBevel); }

    // The outline as the stroker gets it.
    Points outline(Fixed halfWidth, Fixed halfHeight, Fixed rx, Fixed ry)
    {
        StrokeRecorder recorder;
        context.drawEllipticalRect(30_fx, 30_fx, halfWidth, halfHeight, rx, ry);
        EXPECT_EQ(recorder.strokes.size(), 1u);
        if (recorder.strokes.empty()) return {};
        EXPECT_TRUE(recorder.strokes[0].closed);
        EXPECT_EQ(recorder.strokes[0].joinStyle, kJoinRound);
        EXPECT_EQ(recorder.strokes[0].paintColour, 0xFF123456u);
        return recorder.strokes[0].points;
    }
};

TEST_F(EllipticalRect, WithoutRadiiEachCornerIsItsStartAndTwoCurveEnds)
{
    const MMPoint2D se = ::at(50, 40), sw = ::at(10, 40), nw = ::at(10, 20), ne = ::at(50, 20);
    EXPECT_EQ(outline(20_fx, 10_fx, 0, 0),
              (Points{se, se, se, sw, sw, sw, nw, nw, nw, ne, ne, ne}));
    // Pixels 10 to 49 and 20 to 39.
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            EXPECT_EQ(at(x, y) != kBlank, x >= 10 && x < 50 && y >= 20 && y < 40) << x << ' ' << y;
}

TEST_F(EllipticalRect, FirstStraightEdgeNeedsAPositiveLengthAndTheTableIsNotSymmetric)
{
    // So small a scale makes each curve one point, its end.
    context.transform = {0.02_fx, 0, 0, 0.02_fx, 0, 0};
    EXPECT_EQ(outline(20_fx, 10_fx, 20_fx, 10_fx).size(), 8u);     // ellipse
    EXPECT_EQ(outline(20_fx, 10_fx, 5_fx, 10_fx).size(), 8u + 2);  // ex alone
    EXPECT_EQ(outline(20_fx, 10_fx, 20_fx, 5_fx).size(), 8u + 2);  // ey alone
    EXPECT_EQ(outline(20_fx, 10_fx, 20_fx, 15_fx).size(), 8u + 1); // negative ey
    EXPECT_EQ(outline(20_fx, 10_fx, 25_fx, 5_fx).size(), 8u + 4);  // negative ex

    const Points p = outline(16_fx, 16_fx, 16_fx, 16_fx);
    // Units of 1/65536 off the full radius, times 16: 6 at the bottom and top, 10 at the left end
    // of the lower half and so at the right end of the upper half.
    ASSERT_EQ(p.size(), 8u);
    EXPECT_EQ(p[0], (MMPoint2D{30_fx + 0xB500 * 16, 30_fx + 0xB500 * 16}));
    EXPECT_EQ(p[1], (MMPoint2D{30_fx, 46_fx - 6 * 16}));
    EXPECT_EQ(p[3], (MMPoint2D{14_fx + 10 * 16, 30_fx}));
    EXPECT_EQ(p[5], (MMPoint2D{30_fx, 14_fx + 6 * 16}));
    EXPECT_EQ(p[7], (MMPoint2D{46_fx - 10 * 16, 30_fx}));
}

// By the refined rules circles are symmetric and as large as they should be.
TEST_F(EllipticalRect, RefinedDiscsHaveTheirArea)
{
    context.refined = 1;
    context.fillPaint.paintType = kPaintNone;
    for (double radius : {0.5, 1.0, 1.5, 3.0, 5.0, 10.0, 50.0, 200.0, 500.0}) {
        const Fixed r = fx(radius);
        const Points p = outline(r, r, r, r);
        double area = 0;
        for (size_t i = 0; i < p.size(); ++i) {
            const MMPoint2D a = p[i], b = p[(i + 1) % p.size()];
            area += (double(a.x - 30_fx) * (b.y - 30_fx) - double(b.x - 30_fx) * (a.y - 30_fx));
        }
        const double share = area / 2 / 65536 / 65536 / (M_PI * radius * radius);
        EXPECT_NEAR(share, 1, radius < 10 ? 0.013 : radius < 50 ? 0.005 : 0.001) << radius;
    }
}

TEST_F(EllipticalRect, VastRadiiTakeALargerBlock)
{
    context.fillPaint.paintType = kPaintNone;
    context.transform = {100_fx, 0, 0, 100_fx, 0, 0};
    const Points p = outline(9000_fx, 9000_fx, 8000_fx, 7000_fx);
    EXPECT_GT(p.size(), 1024u);
    EXPECT_EQ(p.front(), (MMPoint2D{fx(30 + 9000) - 6 * 8000, fx(30 + 2000)}));
    EXPECT_EQ(p.back(), (MMPoint2D{fx(30 + 9000) - 10 * 8000, fx(30 - 2000)}));
}

TEST_F(EllipticalRect, BoundsUniteTheFillWithDashesOnly)
{
    const Fixed dashes[] = {4_fx, 9000_fx}; // one dash, at the right end
    context.dashCount = 2;
    context.accumulateBounds = 1;
    const auto boundsMinX = [&](const Fixed* dashArray, uint32_t fillType) {
        context.dashArray = dashArray;
        context.fillPaint.paintType = fillType;
        StrokeRecorder recorder;
        context.drawEllipticalRect(30_fx, 30_fx, 20_fx, 10_fx, 0, 0);
        return context.boundsMinX;
    };
    EXPECT_EQ(boundsMinX(dashes, kPaintNone), 46_fx);
    EXPECT_EQ(boundsMinX(dashes, kPaintSolid), 10_fx);
    EXPECT_EQ(boundsMinX(nullptr, kPaintSolid), 10_fx); // the stroke's own
}

// The outline fits, its copy for the fill does not: no stroke either, and no report.
TEST_F(EllipticalRect, AFillWithoutMemoryIsNotReported)
{
    StrokeRecorder recorder;
    context.transform = {2_fx, 0, 0, 2_fx, 0, 0};
    void* filler = context.scratchStack.Alloc(1020);
    {
        FailingHeap heap;
        heap.failFrom(2); // the first spill holds the outline, more than half full
        context.drawEllipticalRect(30_fx, 30_fx, 1800_fx, 1800_fx, 900_fx, 900_fx);
    }
    EXPECT_EQ(context.outOfMemory, 0);
    EXPECT_TRUE(recorder.strokes.empty());
    EXPECT_TRUE(blank());
    context.scratchStack.DeAlloc(filler);
}

} // namespace
