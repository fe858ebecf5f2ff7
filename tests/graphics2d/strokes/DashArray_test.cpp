// SPDX-License-Identifier: MIT
// Where dashes begin and end, and what becomes of patterns that are none.
#include "tests/support/FailingHeap.h"
#include "tests/support/Picture.h"
#include "tests/support/StrokeRecorder.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <climits>
#include <initializer_list>
#include <utility>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using Points = std::vector<MMPoint2D>;

std::vector<StrokeRecorder::Stroke> dash(MMContext2D& context, Points points, bool closed = false)
{
    StrokeRecorder recorder;
    MMLinkPath record = {points.data(), static_cast<uint32_t>(points.size())};
    context.drawDashArray(&record, 1, closed);
    return recorder.strokes;
}

// A context with a dash pattern in whole units. All that lies at positive coordinates is in sight,
// for dashes out of sight are not handed to the stroker, which is recorded and never draws.
struct Dashed {
    std::vector<Fixed> lengths;
    MMContext2D context;
    Pixel pixel = 0;

    explicit Dashed(std::initializer_list<double> pattern, double offset = 0)
    {
        for (double length : pattern)
            lengths.push_back(fx(length));
        context.dashArray = lengths.data();
        context.dashCount = static_cast<uint16_t>(lengths.size());
        context.dashOffset = fx(offset);
        context.target = {INT16_MAX, INT16_MAX, 0, 0, &pixel, 0};
        context.clipRight = context.clipBottom = INT16_MAX;
    }
};

const Points kLine20 = {{0, 0}, {20_fx, 0}};

TEST(DashArray, PhasesOnAStraightLine)
{
    using Spans = std::vector<std::pair<double, double>>;
    struct {
        std::initializer_list<double> pattern;
        double offset;
        Spans dashes; // from and to along 20 units
    } const cases[] = {
        {{4, 2}, 0, {{0, 4}, {6, 10}, {12, 16}, {18, 20}}},
        {{4, 2}, 3, {{0, 1}, {3, 7}, {9, 13}, {15, 19}}},
        // The pattern turns on exactly at the end: a dash of no length, which caps make a dot.
        {{4, 2}, 4, {{2, 6}, {8, 12}, {14, 18}, {20, 20}}},
        {{4, 2}, 6003, {{0, 1}, {3, 7}, {9, 13}, {15, 19}}},
        {{4, 2}, -5, {{0, 3}, {5, 9}, {11, 15}, {17, 20}}},
        {{4, 2}, -6006, {{0, 4}, {6, 10}, {12, 16}, {18, 20}}},
        {{8}, 0, {{0, 8}, {16, 20}}},
        {{8}, 11, {{5, 13}}},
        {{8}, -3, {{0, 3}, {11, 19}}}, // backward, an odd pattern's last entry is on
        {{8}, -16, {{8, 16}}},
        {{3, 2, 1}, 0, {{0, 3}, {5, 6}, {9, 11}, {12, 15}, {17, 18}}},
        // An entry without length is over before the walk begins.
        {{0, 5}, 0, {{5, 5}, {10, 10}, {15, 15}, {20, 20}}},
        {{5, 0}, 1, {{0, 4}, {4, 9}, {9, 14}, {14, 19}, {19, 20}}},
        {{30, 5}, 0, {{0, 20}}},
        {{1, 30}, 1, {}},
    };
    for (const auto& c : cases) {
        Dashed dashed(c.pattern, c.offset);
        Spans spans;
        for (const auto& stroke : dash(dashed.context, kLine20)) {
            EXPECT_FALSE(stroke.closed);
            EXPECT_EQ(stroke.records, 1u);
            spans.emplace_back(stroke.points.front().x / 65536.0, stroke.points.back().x / 65536.0);
        }
        EXPECT_EQ(spans, c.dashes) << "pattern of " << c.pattern.size() << ", offset " << c.offset;
    }
}

// By the refined rules a pattern that begins with an empty entry begins with a dot.
TEST(DashArray, AnEmptyFirstEntryIsADotByTheRefinedRules)
{
    Dashed dots({0, 5}), shifted({0, 5}, 1), gaps({5, 0}, 5);
    for (Dashed* dashed : {&dots, &shifted, &gaps})
        dashed->context.refined = 1;
    const auto strokes = dash(dots.context, kLine20);
    ASSERT_EQ(strokes.size(), 5u);
    for (size_t i = 0; i < 5; ++i)
        EXPECT_EQ(strokes[i].points, (Points{{fx(5.0 * i), 0}, {fx(5.0 * i), 0}}));
    EXPECT_EQ(dash(shifted.context, kLine20).size(), 4u);
    EXPECT_EQ(dash(gaps.context, kLine20)[0].points.back(), at(5, 0));
}

// Its place is the start itself, whatever the edge's length rounds to; and a square one is turned
// with the first edge, also where the subpath comes back on another.
TEST(DashArray, ADotAtTheStartLiesOnTheFirstEdge)
{
    const Points triangle = {at(100.3, 100.7), at(140.3, 100.7), at(120.1, 131.9)};
    Dashed steep({0, 1000}), dot({0, 1000});
    steep.context.refined = dot.context.refined = 1;
    const auto strokes = dash(steep.context, {triangle[2], triangle[0]});
    ASSERT_EQ(strokes.size(), 1u);
    EXPECT_EQ(strokes[0].points, (Points{triangle[2], triangle[2]}));

    dot.context.target.pixels = nullptr; // the bounds alone
    dot.context.capStyle = kCapSquare;
    dot.context.strokeHalfWidth = 4_fx;
    dot.context.accumulateBounds = 1;
    Points closed = triangle;
    MMLinkPath record = {closed.data(), 3};
    dot.context.drawDashArray(&record, 1, 1);
    EXPECT_EQ(dot.context.boundsMinX, triangle[0].x - 4_fx);
    EXPECT_EQ(dot.context.boundsMaxY, triangle[0].y + 4_fx);
}

// By the refined rules the dash that runs over the start of a closed subpath is one.
TEST(DashArray, TheDashOverAClosedStartIsOneByTheRefinedRules)
{
    const Points square = {at(0, 0), at(10, 0), at(10, 10), at(0, 10)};
    Dashed over({6, 4}, 3), before({6, 4}, 0), whole({50, 4}, 0);
    for (Dashed* dashed : {&over, &before, &whole})
        dashed->context.refined = 1;
    auto strokes = dash(over.context, square, true);
    ASSERT_EQ(strokes.size(), 4u);
    EXPECT_EQ(strokes[0].points, (Points{at(7, 0), at(10, 0), at(10, 3)}));
    EXPECT_EQ(strokes[3].points, (Points{at(0, 3), at(0, 0), at(3, 0)}));
    strokes = dash(before.context, square, true); // a gap ends exactly at the start
    ASSERT_EQ(strokes.size(), 4u);
    EXPECT_EQ(strokes[3].points, (Points{at(0, 0), at(6, 0)}));
    strokes = dash(whole.context, square, true);
    ASSERT_EQ(strokes.size(), 1u);
    EXPECT_TRUE(strokes[0].closed);
}

// Exact boundaries from a plain model: positions along right-angled edges need no rounding.
TEST(DashArray, BendsWithItsVerticesAcrossRecords)
{
    Dashed dashed({15, 5}, 0);
    Points all = {at(0, 0), at(10, 0), at(10, 0), at(10, 10), at(0, 10)};
    MMLinkPath records[] = {{&all[0], 1}, {&all[1], 0}, {&all[1], 2}, {&all[3], 2}};
    StrokeRecorder recorder;
    dashed.context.drawDashArray(records, 4, 1);
    ASSERT_EQ(recorder.strokes.size(), 3u);
    EXPECT_EQ(recorder.strokes[0].points, (Points{at(0, 0), at(10, 0), at(10, 5)}));
    // The gap ends exactly on a vertex; closed, the walk goes back to the first point.
    EXPECT_EQ(recorder.strokes[1].points, (Points{at(10, 10), at(0, 10), at(0, 5)}));
    EXPECT_EQ(recorder.strokes[2].points, (Points{{0, 0}}));
}

TEST(DashArray, WhatCannotBeCutIsStrokedWhole)
{
    Dashed empty({}), null({3, 2}), negative({3, -1, 2}), zero({0, 0}), fine({0, 30 / 65536.0});
    null.context.dashArray = nullptr;
    Dashed zeros({});
    zeros.lengths.assign(65535, 0);
    zeros.lengths.back() = 15_fx;
    zeros.context.dashArray = zeros.lengths.data();
    zeros.context.dashCount = 65535;
    for (Dashed* dashed : {&empty, &null, &negative, &zero, &fine, &zeros}) {
        for (Fixed offset : {0, INT_MIN, INT_MAX}) {
            dashed->context.dashOffset = offset;
            const auto strokes = dash(dashed->context, {at(0, 0), at(20, 0), at(20, 5)}, true);
            ASSERT_EQ(strokes.size(), 1u);
            EXPECT_TRUE(strokes[0].closed);
            EXPECT_EQ(strokes[0].points.size(), 3u);
        }
    }
}

TEST(DashArray, ASubpathIsCutInto65535PiecesAtMost)
{
    // Pieces of one unit, on and off, along 65,534 and 65,535 units: the last one is the end.
    Dashed units({1.0 / 65536});
    EXPECT_EQ(dash(units.context, {{0, 0}, {65534, 0}}).size(), 32768u);
    EXPECT_EQ(dash(units.context, {{0, 0}, {65535, 0}}).size(), 1u);
    // 32,768 units there and back again 299 times, more steeply by a few parts of 65,536: 65,317
    // pieces of 150 units.
    Points zigzag(300);
    for (size_t i = 0; i < zigzag.size(); ++i)
        zigzag[i] = {i % 2 == 0 ? 0 : INT_MAX, static_cast<Fixed>(i)};
    Dashed coarse({150, 150}), fine({1, 1});
    EXPECT_NEAR(double(dash(coarse.context, zigzag).size()), 32659, 1);
    EXPECT_EQ(dash(fine.context, zigzag).size(), 1u);
}

// A square of 20 by 20 units is 28 wide when it is turned with a line of slope 4/3.
TEST(DashArray, SquareDotsLieAlongTheirLine)
{
    const auto expectBounds = [](Dashed&& dashed, Points line, MMPoint2D centre, Fixed reach) {
        dashed.context.strokeHalfWidth = 10_fx;
        dashed.context.capStyle = kCapSquare;
        dashed.context.clipRight = 0; // out of sight, and bounded all the same
        MMLinkPath record = {line.data(), static_cast<uint32_t>(line.size())};
        dashed.context.drawDashArray(&record, 1, 0);
        EXPECT_NEAR(dashed.context.boundsMinX, centre.x - reach, 4);
        EXPECT_NEAR(dashed.context.boundsMinY, centre.y - reach, 4);
        EXPECT_NEAR(dashed.context.boundsMaxX, centre.x + reach, 4);
        EXPECT_NEAR(dashed.context.boundsMaxY, centre.y + reach, 4);
    };
    expectBounds(Dashed({0, 25}), {at(50, 50), at(80, 90)}, at(80, 90), 14_fx); // at the end
    expectBounds(Dashed({0, 25}, 20), {at(50, 50), at(56, 58)}, at(53, 54), 14_fx);
    expectBounds(Dashed({5, 5}), {at(50, 50), at(50, 50)}, at(50, 50), 10_fx); // no direction
}

// A picture of half transparent dots whose discs of radius 5 overlap.
struct Beads : Picture {
    std::vector<Fixed> lengths = {0, 3_fx};

    explicit Beads(bool antiAlias, bool mirrored = false) : Picture(100)
    {
        context.refined = 1;
        context.antiAlias = antiAlias;
        context.currentPaint.paintOpacity = 128;
        context.strokeHalfWidth = 5_fx;
        context.capStyle = kCapRound;
        context.dashArray = lengths.data();
        context.dashCount = 2;
        if (mirrored) context.transform = {kFixedOne, 0, 0, -kFixedOne, 0, 100_fx};
    }

    // So small that without anti-aliasing some light a pixel of their own.
    void shrinkTo(double radius)
    {
        lengths[1] = 0.6_fx;
        context.strokeHalfWidth = fx(radius);
    }

    void draw(int vertices = 40)
    {
        std::vector<MMPoint2D> zigzag;
        for (int i = 0; i < vertices; ++i)
            zigzag.push_back(::at(i % 2 == 0 ? 8 : 91, 8 + 2 * i));
        MMLinkPath record = {zigzag.data(), static_cast<uint32_t>(zigzag.size())};
        context.drawDashArray(&record, 1, 0);
    }

    // The pixels drawn at all, and the most that one of them was covered.
    std::pair<std::vector<bool>, int> drawn() const
    {
        std::vector<bool> touched;
        int most = 0;
        for (int i = 0; i < 100 * 100; ++i) {
            const int covered = coverage(i % 100, i / 100);
            touched.push_back(covered != 0);
            most = std::max(most, covered);
        }
        return {touched, most};
    }
};

int differing(const std::vector<bool>& a, const std::vector<bool>& b)
{
    int count = 0;
    for (size_t i = 0; i < a.size(); ++i)
        count += a[i] != b[i] ? 1 : 0;
    return count;
}

TEST(DashArray, OverlappingDashesAreBlendedOnceByTheRefinedRules)
{
    for (bool antiAlias : {false, true})
        for (bool mirrored : {false, true})
            for (double radius : {5.0, 0.55, 0.45}) {
                Beads refined(antiAlias, mirrored), classic(antiAlias, mirrored);
                classic.context.refined = 0;
                classic.context.dashOffset = -1; // or there is no dot at the start
                for (Beads* beads : {&refined, &classic}) {
                    if (radius < 1) beads->shrinkTo(radius);
                    beads->draw();
                }
                SCOPED_TRACE(testing::Message() << antiAlias << mirrored << radius);
                EXPECT_LE(refined.drawn().second, 129);
                EXPECT_GT(classic.drawn().second, 140);
                if (!antiAlias) {
                    // The classic dots begin a unit further on.
                    EXPECT_LE(differing(refined.drawn().first, classic.drawn().first), 1);
                }
            }
}

TEST(DashArray, WithoutMemoryForAllDashesEachIsDrawn)
{
    Beads whole(true);
    whole.draw(5);
    const std::vector<bool> wanted = whole.drawn().first;
    uint32_t onePieceAtATime = 0;
    failEachAllocation([&] {
        Beads beads(true);
        void* full = beads.context.scratchStack.Alloc(1000); // what follows has to ask the heap
        beads.draw(5);
        beads.context.scratchStack.DeAlloc(full);
        const auto [touched, most] = beads.drawn();
        if (beads.context.outOfMemory == 0) {
            EXPECT_EQ(touched, wanted);
        }
        onePieceAtATime += most > 140 ? 1 : 0;
    });
    EXPECT_GE(onePieceAtATime, 1u);
}

} // namespace
