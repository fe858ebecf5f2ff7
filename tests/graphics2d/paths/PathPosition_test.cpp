// SPDX-License-Identifier: MIT
// Positions along a path by distance.
#include "graphics2d/MMContext2D.h"
#include "tests/support/EncodedPath.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

// A position and the state that a caller sees.
struct Walker {
    std::vector<uint32_t> words;
    MMContext2D context;
    MMPathPos pos{};
    Degrees direction = -1;

    explicit Walker(const EncodedPath& path) : words(path.stored()) { pos.path = words.data(); }

    MMPoint2D to(Fixed distance)
    {
        context.getPathPos(pos, distance, &direction);
        return pos.current;
    }
};

// An open corner, a lone point, and a closed triangle with sides of 3, 4 and 5: 30 and 12 units.
EncodedPath cornerAndTriangle()
{
    EncodedPath path;
    path.points({at(10, 10), at(20, 10)}).points({at(20, 30)}, EncodedPath::kOpen);
    path.points({at(77, 77)}, EncodedPath::kOpen);
    path.points({at(50, 50), at(53, 50), at(53, 54)}).bare(3u << 28 | 3u << 30);
    return path;
}

TEST(PathPosition, WalksEdgesClosingsAndJumpsGaps)
{
    const struct {
        double distance;
        MMPoint2D point;
        double degrees;
    } cases[] = {
        {0, at(10, 10), 0},         {4.5, at(14.5, 10), 0},       {10, at(20, 10), 0},
        {10.25, at(20, 10.25), 90}, {30, at(20, 30), 90},         {32, at(52, 50), 0},
        {35, at(53, 52), 90},       {39.5, at(51.5, 52), 233.13}, {42, at(50, 50), 233.13},
        {50, at(50, 50), 233.13},   {31, at(51, 50), 0},
    };
    Walker walker(cornerAndTriangle());
    for (const auto& c : cases) {
        const MMPoint2D point = walker.to(fx(c.distance));
        // Unit directions are cut to 16 fraction bits.
        EXPECT_NEAR(point.x, c.point.x, 4) << c.distance;
        EXPECT_NEAR(point.y, c.point.y, 4) << c.distance;
        EXPECT_NEAR(walker.direction / 65536.0, c.degrees, 0.01) << c.distance;
        EXPECT_NEAR(walker.pos.walked, fx(c.distance < 42 ? c.distance : 42), 4) << c.distance;
    }
    walker.to(43_fx);
    EXPECT_EQ(walker.pos.subpathsLeft, 0);
    walker.to(-5);
    EXPECT_EQ(walker.pos.current, at(10, 10));
}

TEST(PathPosition, ManySmallStepsEndWhereOneLargeOneDoes)
{
    EncodedPath path = cornerAndTriangle();
    path.curves({at(0, 0), at(1, 1), at(2, 2)});
    path.points({at(0, 0)})
        .curves({at(0, 40), at(60, 40), at(60, 0), at(70, 9), at(9, 70), at(5, 5)},
                EncodedPath::kClosed);
    std::vector<MMPoint2D> line(40000, at(1, 1)); // more items than the cursor's index can hold
    for (size_t i = 0; i < line.size(); ++i)
        line[i] = {static_cast<Fixed>(i * 100), static_cast<Fixed>(i % 2 * 50)};
    path.points(line, EncodedPath::kOpen);

    Walker steps(path);
    for (Fixed distance = 0; distance < 400_fx; distance += 400_fx / 53) {
        const MMPoint2D point = steps.to(distance);
        Walker once(path);
        ASSERT_EQ(point, once.to(distance)) << distance;
        ASSERT_EQ(steps.direction, once.direction) << distance;
        ASSERT_EQ(steps.pos.walked, once.pos.walked) << distance;
    }
}

// So that the next step starts there, and not where a 16-bit index would lead.
TEST(PathPosition, TheCursorKeepsToItsItemInLongCommands)
{
    std::vector<MMPoint2D> line;
    for (int i = 0; i < 70000; ++i)
        line.push_back({i * 1024, 0});
    EncodedPath path;
    path.points(line, EncodedPath::kOpen);
    Walker walker(path);
    for (int item : {5, 30000, 33000, 40000, 69990}) {
        EXPECT_EQ(walker.to(item * 1024 + 500), (MMPoint2D{item * 1024 + 500, 0}));
        EXPECT_EQ(walker.pos.item, static_cast<uint32_t>(item + 1));
        EXPECT_EQ(walker.pos.itemIndex, static_cast<int16_t>(item + 1));
    }
}

// A circle of four curves of radius 100: equal distances are equal angles.
TEST(PathPosition, FollowsCurvesAsTheyAreDrawn)
{
    const double k = 55.2285;
    EncodedPath path;
    path.points({at(100, 0)})
        .curves({at(100, k), at(k, 100), at(0, 100), at(-k, 100), at(-100, k), at(-100, 0),
                 at(-100, -k), at(-k, -100), at(0, -100), at(k, -100), at(100, -k), at(100, 0)},
                EncodedPath::kOpen);
    Walker walker(path);
    walker.context.transform = {4_fx, 0, 0, 4_fx, 0, 0};
    for (int degrees = 10; degrees < 360; degrees += 25) {
        const double angle = degrees * M_PI / 180;
        const MMPoint2D p = walker.to(fx(100 * angle));
        EXPECT_NEAR(p.x / 65536.0, 100 * std::cos(angle), 0.5) << degrees;
        EXPECT_NEAR(p.y / 65536.0, 100 * std::sin(angle), 0.5) << degrees;
        EXPECT_NEAR(walker.direction / 65536.0, std::fmod(degrees + 90, 360), 6) << degrees;
    }
}

TEST(PathPosition, PathsWithoutLength)
{
    EncodedPath none, curveFirst, lonePoint, ends;
    none.points({at(1, 1), at(2, 2)}, EncodedPath::kOpen).header() = 0;
    curveFirst.curves({at(1, 1), at(2, 2), at(3, 3)}, EncodedPath::kClosed);
    lonePoint.points({at(6, 7), at(6, 7)}, EncodedPath::kClosed);
    for (const EncodedPath* path : {&none, &curveFirst, &lonePoint}) {
        Walker walker(*path);
        EXPECT_EQ(walker.to(3_fx), path == &lonePoint ? at(6, 7) : at(0, 0));
        EXPECT_EQ(walker.direction, 0);
        EXPECT_EQ(walker.pos.walked, 0);
    }
    // Farther apart than the longest distance.
    ends.points({{INT32_MIN, INT32_MIN}, {INT32_MAX, INT32_MAX}}, EncodedPath::kOpen);
    Walker walker(ends);
    const MMPoint2D p = walker.to(INT32_MAX);
    EXPECT_NEAR(p.x, 2147483648.0 * (std::sqrt(0.5) - 1), 100000);
    EXPECT_EQ(p.x, p.y);
}

TEST(PathPosition, WithoutScratchMemoryTheRecordStays)
{
    EncodedPath path;
    path.points({at(0, 0), at(5, 0)}).curves({at(5, 9), at(9, 9), at(9, 0)}, EncodedPath::kOpen);
    Walker walker(path);
    walker.to(4_fx);
    void* filler = walker.context.scratchStack.Alloc(1000);
    {
        FailingHeap heap;
        heap.failFrom(1);
        EXPECT_EQ(walker.to(9_fx), at(4, 0));
    }
    walker.context.scratchStack.DeAlloc(filler);
    EXPECT_NE(walker.to(9_fx), at(4, 0));
}

} // namespace
