// SPDX-License-Identifier: MIT
// Decoding and filling of encoded paths, well-formed and hostile.
#include "graphics2d/raster/Rasteriser.h"
#include "tests/graphics2d/raster/RasterShapes.h"
#include "tests/support/EncodedPath.h"
#include "tests/support/Picture.h"
#include "tests/support/StrokeRecorder.h"
#include "tests/support/UserUnits.h"

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

using Points = std::vector<MMPoint2D>;
using model::bridged;

const Matrix2D kSlanted = {1.25_fx, 0.25_fx, -0.5_fx, 1.5_fx, 7_fx, -2_fx};

// Draws the path in one picture and, in another, its subpaths as one polygon: each with its first
// point at its end, then the first points in reverse order. Compares pixels and bounds.
void expectFillsAs(const EncodedPath& path, const std::vector<Points>& subpaths,
                   MMFillRule rule = kFillNonZero)
{
    Picture drawn, expected;
    for (Picture* picture : {&drawn, &expected}) {
        picture->context.transform = kSlanted;
        picture->context.fillRule = rule;
    }
    drawn.context.drawPath(path.data());
    Points polygon = bridged(subpaths);
    for (MMPoint2D& p : polygon)
        expected.context.transform.transform(&p, &p, 1);
    expected.context.currentPaint = expected.context.fillPaint;
    fillPolygon(expected.context, polygon.data(), static_cast<uint32_t>(polygon.size()), rule)
        .storeUnlessEmpty(expected.context);
    EXPECT_FALSE(expected.blank());
    EXPECT_EQ(drawn.pixels, expected.pixels);
    EXPECT_EQ(drawn.context.boundsMinX, expected.context.boundsMinX);
    EXPECT_EQ(drawn.context.boundsMaxY, expected.context.boundsMaxY);
    EXPECT_EQ(drawn.context.outOfMemory, 0);
}

const Points kOuter = {at(5, 5), at(40, 8), at(35, 30), at(8, 28)};
const Points kInner = {at(12, 12), at(14, 24), at(30, 22), at(28, 14)};

TEST(PathFill, FillsAllSubpathsAsOneShape)
{
    const Points third = {at(2, 34), at(12, 31), at(9, 38)};
    EncodedPath path;
    path.points(kOuter, EncodedPath::kClosed)
        .points({kInner[0]})
        .points({kInner[1], kInner[2], kInner[3]}, EncodedPath::kOpen)
        .points(third, EncodedPath::kClosed);
    expectFillsAs(path, {kOuter, kInner, third}, kFillNonZero);
    expectFillsAs(path, {kOuter, kInner, third}, kFillEvenOdd);
}

TEST(PathFill, CurvesStartAtTheEndOfTheSegmentBefore)
{
    const Points curves = {at(20, 0),  at(40, 10), at(35, 30), // the end is where the next begins
                           at(30, 40), at(10, 40), at(5, 25)};
    EncodedPath path;
    path.points({at(1, 1), at(5, 5)}).curves(curves, EncodedPath::kClosed);

    Points outline = {at(1, 1), at(5, 5)};
    MMContext2D flattener;
    flattener.transform = kSlanted;
    for (size_t i = 0; i < 6; i += 3) {
        Points run(1024);
        run.resize(static_cast<size_t>(flattener.getBezierPts(run.data(), outline.back(), curves[i],
                                                              curves[i + 1], curves[i + 2])));
        outline.insert(outline.end(), run.begin(), run.end());
    }
    EXPECT_GT(outline.size(), 8u);
    expectFillsAs(path, {outline});
}

// It starts where the subpath before it ended, at a point that is no part of it.
TEST(PathFill, ACurveMayOpenALaterSubpath)
{
    const Points curve = {at(40, 0), at(45, 20), at(12, 40)};
    EncodedPath path;
    path.points(kOuter, EncodedPath::kClosed).curves(curve, EncodedPath::kClosed);
    MMContext2D flattener;
    flattener.transform = kSlanted;
    Points run(1024);
    run.resize(static_cast<size_t>(
        flattener.getBezierPts(run.data(), kOuter.back(), curve[0], curve[1], curve[2])));
    EXPECT_GT(run.size(), 3u);
    expectFillsAs(path, {kOuter, run});
}

TEST(PathFill, MalformedCommandsDrawWhatIsSoundInThem)
{
    const Points curve = {at(20, 0), at(40, 10), at(35, 30)};
    EncodedPath ignoredKinds;
    ignoredKinds.bare(2u << 28 | 7).points({kOuter[0], kOuter[1]}).bare(3u << 28 | 0xFFFFFFF);
    ignoredKinds.points({kOuter[2], kOuter[3]}).bare(3u << 28 | 1u << 30 | 9);
    expectFillsAs(ignoredKinds, {kOuter});

    EncodedPath curveFirst;
    curveFirst.curves(curve).points(kOuter, EncodedPath::kClosed);
    expectFillsAs(curveFirst, {kOuter});

    EncodedPath emptySubpaths;
    emptySubpaths.bare(EncodedPath::kClosed).points(kOuter, EncodedPath::kClosed);
    emptySubpaths.points({}, EncodedPath::kOpen).bare(3u << 28 | 3u << 30);
    emptySubpaths.points(kInner, EncodedPath::kOpen).curves({}, EncodedPath::kOpen);
    emptySubpaths.header() |= 0xFFFF0000; // more segments than there are; all others say 0
    expectFillsAs(emptySubpaths, {kOuter, kInner});
}

TEST(PathFill, NothingToFill)
{
    EncodedPath none, two, curveOnly, unpainted;
    none.points(kOuter, EncodedPath::kClosed).header() = 0x50000; // no subpath
    two.points({at(5, 5), at(30, 30)}, EncodedPath::kClosed);
    curveOnly.curves({at(20, 0), at(40, 10), at(35, 30)}, EncodedPath::kClosed);
    unpainted.points(kOuter, EncodedPath::kClosed);
    for (const EncodedPath* path : {&none, &two, &curveOnly, &unpainted}) {
        Picture picture;
        if (path == &unpainted) picture.context.fillPaint.paintType = kPaintNone;
        picture.context.boundsMinX = 77;
        picture.context.currentPaint.paintColour = 0xFF123456;
        picture.context.drawPath(path->data());
        EXPECT_TRUE(picture.blank());
        EXPECT_EQ(picture.context.boundsMinX, 77);
        EXPECT_EQ(picture.context.currentPaint.paintColour, 0xFF123456u) << "not even begun";
    }
}

// 70,000 points in one command: with 16-bit counts only 4,464 of them would be drawn.
TEST(PathFill, CountsBeyond16BitsDoNotWrap)
{
    Points jagged; // down its left side, up its right one
    for (int i = 0; i < 70000; ++i) {
        const bool left = i < 35000;
        jagged.push_back({fx(left ? 5 : 35) + i % 3 * 0x3000, 3_fx + (left ? i : 69999 - i) * 50});
    }
    EncodedPath path;
    path.points(jagged, EncodedPath::kClosed);
    expectFillsAs(path, {jagged});
}

TEST(PathFill, BoundsOnlyMeasuresUntransformedPointsAndDrawsNothing)
{
    EncodedPath path;
    path.points({at(-3, 7), at(5, -2)}, EncodedPath::kOpen);
    path.points({at(0, 0)}).curves({at(0, 80), at(100, 80), at(100, 0)}, EncodedPath::kOpen);
    Picture picture;
    picture.context.renderFlags = kRenderBoundsOnly;
    picture.context.transform = {1_fx, 0, 0, 1_fx, 500_fx, 500_fx};
    picture.context.drawPath(path.data());
    EXPECT_TRUE(picture.blank());
    EXPECT_EQ(picture.context.boundsMinX, -3_fx);
    EXPECT_EQ(picture.context.boundsMinY, -2_fx);
    EXPECT_EQ(picture.context.boundsMaxX, 100_fx);
    // The curve's middle is at 3/4 of its controls' height, and it is always halved there.
    EXPECT_EQ(picture.context.boundsMaxY, 60_fx);

    path.header() = 0;
    picture.context.drawPath(path.data());
    EXPECT_TRUE(picture.emptyBounds());
}

TEST(PathStroke, HandsOnEachSubpathInUserSpace)
{
    EncodedPath path;
    path.points({at(1, 1)}).points({at(20, 1), at(20, 20)}, EncodedPath::kClosed);
    path.bare(EncodedPath::kOpen).points({at(4, 50)}, EncodedPath::kOpen);
    path.points({at(30, 30), at(50, 30)}, EncodedPath::kOpen);
    Picture picture;
    MMContext2D& context = picture.context;
    context.strokePaint.paintType = kPaintSolid;
    context.strokePaint.paintColour = 0xFF00FF00;
    context.fillPaint.paintType = kPaintNone;
    context.accumulateBounds = 1;
    context.transform = {0.5_fx, 0, 0, 0.5_fx, 0, 0};
    StrokeRecorder recorder;
    context.drawPath(path.data());
    const struct {
        Points points;
        uint32_t records;
        bool closed;
    } strokes[] = {{{at(1, 1), at(20, 1), at(20, 20)}, 2, true},
                   {{at(4, 50)}, 1, false},
                   {{at(30, 30), at(50, 30)}, 1, false}};
    ASSERT_EQ(recorder.strokes.size(), std::size(strokes));
    for (size_t i = 0; i < std::size(strokes); ++i) {
        EXPECT_EQ(recorder.strokes[i].points, strokes[i].points);
        EXPECT_EQ(recorder.strokes[i].records, strokes[i].records);
        EXPECT_EQ(recorder.strokes[i].closed, strokes[i].closed);
        EXPECT_EQ(recorder.strokes[i].paintColour, 0xFF00FF00u);
    }
    EXPECT_EQ(context.boundsMinX, 1_fx);
    EXPECT_EQ(context.boundsMaxY, 50_fx);

    const Fixed dashes[] = {19_fx, 1000_fx};
    context.dashArray = dashes;
    context.dashCount = 2;
    recorder.strokes.clear();
    context.drawPath(path.data());
    ASSERT_EQ(recorder.strokes.size(), 2u); // the lone point has no dash
    EXPECT_EQ(recorder.strokes[0].points, (Points{at(1, 1), at(20, 1)}));
    EXPECT_EQ(context.boundsMaxX, 49_fx);
    picture.wordsKept = 3; // the lone point's block
}

// Without accumulateBounds a stroke leaves the bounds of the last subpath, whatever is in it.
TEST(PathStroke, AnEmptySubpathLeavesEmptyBounds)
{
    const Fixed dashes[] = {3_fx};
    EncodedPath empty, emptyLast;
    empty.bare(EncodedPath::kClosed);
    emptyLast.points(kOuter, EncodedPath::kOpen).points({}, EncodedPath::kOpen);
    for (const EncodedPath* path : {&empty, &emptyLast})
        for (bool dashed : {false, true}) {
            Picture picture;
            MMContext2D& context = picture.context;
            context.boundsMinX = context.boundsMaxX = 77;
            context.fillPaint.paintType = kPaintNone;
            context.strokePaint.paintType = kPaintSolid;
            context.dashArray = dashed ? dashes : nullptr;
            context.dashCount = 1;
            context.drawPath(path->data());
            EXPECT_TRUE(picture.emptyBounds());
            EXPECT_EQ(picture.blank(), path == &empty);
        }
}

TEST(PathKeyPoints, CountsPointsCurveEndsAndClosings)
{
    MMContext2D context;
    EncodedPath path;
    path.points({at(0, 0), at(1, 0), at(2, 0)}).curves(Points(6, at(3, 3)), EncodedPath::kClosed);
    EXPECT_EQ(context.getPathKeyPointCount(path.stored().data()), 3u + 2 + 1);
    path.bare(3u << 28 | 70).bare(2u << 28 | 5).points({at(0, 0)}, EncodedPath::kOpen);
    EXPECT_EQ(context.getPathKeyPointCount(path.stored().data()), 6u + 75 + 1)
        << "no words of them";
    path.points(kOuter, EncodedPath::kClosed).header() = 0; // no subpath: one command is counted
    EXPECT_EQ(context.getPathKeyPointCount(path.stored().data()), 3u);
}

} // namespace
