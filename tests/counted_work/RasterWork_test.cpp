// SPDX-License-Identifier: MIT
// The work of filling hostile polygons, counted rather than timed.
#include "graphics2d/raster/Rasteriser.h"
#include "tests/counted_work/Blocks.h"
#include "tests/support/Targets.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

constexpr int32_t kSide = 1000;

// Basic blocks run to fill contours of so many points each with anti-aliasing.
uint64_t workOf(const std::vector<MMPoint2D>& points, uint32_t pointsEach, MMFillRule rule)
{
    std::vector<Pixel> pixels(kSide * 100);
    MMContext2D context;
    classicTarget(context, pixels.data(), kSide, 100);
    context.antiAlias = 1;
    context.currentPaint = context.fillPaint;
    std::vector<uint32_t> ends;
    for (uint32_t end = pointsEach; end <= points.size(); end += pointsEach)
        ends.push_back(end);
    const Contours contours = {points.data(), ends.data(), static_cast<uint32_t>(ends.size())};
    blocksRun = 0;
    fillContours(context, contours, rule, ThinShapes::kOneSpan);
    return blocksRun;
}

class Places {
public:
    MMPoint2D within(double top, double bottom)
    {
        return {coordinate(0, kSide), coordinate(top, bottom)};
    }
    Fixed coordinate(double low, double high)
    {
        return fx(low + (high - low) * (random_() / 4294967296.0));
    }

private:
    std::mt19937 random_{1};
};

// Polygons that once cost, or are likely to cost, the square of their vertices.
struct Family {
    const char* name;
    MMPoint2D (*vertex)(Places& places, int i, int n);
};

const Family kFamilies[] = {
    {"up and down through two rows",
     [](Places& p, int i, int) { return i % 2 != 0 ? p.within(10, 10.5) : p.within(11.5, 12); }},
    {"all crossing all others in one slab",
     [](Places&, int i, int n) {
         return i % 2 != 0 ? at(kSide * double(i) / n, 10.25)
                           : at(kSide - kSide * double(i) / n, 11.75);
     }},
    {"across whole rows",
     [](Places& p, int i, int) { return i % 2 != 0 ? p.within(9.9, 10) : p.within(12, 12.1); }},
    {"random in one row", [](Places& p, int, int) { return p.within(10, 11); }},
    {"wide bent chains across upright ones",
     [](Places& p, int i, int n) {
         if (i < n / 2) return at(2.0 * kSide * i / n, i % 2 != 0 ? 0 : 90);
         return i % 2 != 0 ? at(i & 2 ? 0 : kSide, 10.2) : p.within(10.5, 10.9);
     }},
    {"births on the wrong side of upright chains",
     [](Places& p, int i, int n) {
         if (i < n / 2)
             return at(2.0 * kSide * i / n + (i % 2 != 0 ? 0 : 900), i % 2 != 0 ? 10 : 11);
         return i % 2 != 0 ? p.within(10.9, 10.95) : p.within(12, 13);
     }},
    {"many horizontal steps",
     [](Places& p, int i, int) {
         return MMPoint2D{p.coordinate(0, kSide), at(0, 10 + (i / 2 * 7 % 40) * 0.05).y};
     }},
};

// Four times the vertices may cost little more than four times the work, wherever they lie: 4.7 by
// n log n, some more while the rows only begin to be crowded. The square would be sixteen.
TEST(RasterWork, GrowsNoFasterThanSorting)
{
    constexpr int kFew = 3000, kMany = 12000;
    for (const Family& family : kFamilies) {
        for (MMFillRule rule : {kFillNonZero, kFillEvenOdd}) {
            uint64_t work[2];
            for (int size = 0; size < 2; ++size) {
                Places places;
                std::vector<MMPoint2D> polygon;
                const int n = size == 0 ? kFew : kMany;
                for (int i = 0; i < n; ++i)
                    polygon.push_back(family.vertex(places, i, n));
                work[size] = workOf(polygon, static_cast<uint32_t>(n), rule);
            }
            EXPECT_GT(work[0], uint64_t{kFew}) << family.name;
            EXPECT_LT(work[1], work[0] * 8) << family.name << ", fill rule " << int(rule);
        }
    }
}

// Regular shapes scattered over the picture, in one path. Their first corners lie at `first` of the
// angle from one corner to the next.
std::vector<MMPoint2D> scattered(int shapes, int corners, double radius, double first = 0)
{
    Places places;
    std::vector<MMPoint2D> points;
    for (int i = 0; i < shapes; ++i) {
        const MMPoint2D centre = places.within(0, 100);
        for (int k = 0; k < corners; ++k) {
            const double turn = (k + first) * 2 * M_PI / corners;
            points.push_back(
                {centre.x + fx(radius * std::cos(turn)), centre.y + fx(radius * std::sin(turn))});
        }
    }
    return points;
}

// Small shapes in one path cost what they cost one by one, however many they are: sixteen times
// the shapes at most thirty times as much, sorting included, when the rows become crowded.
TEST(RasterWork, ScatteredShapesDoNotMeet)
{
    const struct {
        int few, corners;
        double radius;
    } cases[] = {{250, 4, 2}, {60, 32, 10}};
    for (const auto& c : cases)
        for (MMFillRule rule : {kFillNonZero, kFillEvenOdd}) {
            const uint32_t corners = static_cast<uint32_t>(c.corners);
            const uint64_t few = workOf(scattered(c.few, c.corners, c.radius), corners, rule);
            const uint64_t many = workOf(scattered(16 * c.few, c.corners, c.radius), corners, rule);
            EXPECT_GT(few, uint64_t(c.few * c.corners));
            EXPECT_LT(many, few * 30) << c.corners << " corners, fill rule " << int(rule);
        }
}

// Small upright squares are drawn each by itself where they are alone, as most of these are, for a
// fraction of what turned ones cost.
TEST(RasterWork, LoneRectanglesAreCheap)
{
    const uint64_t turned = workOf(scattered(250, 4, 2), 4, kFillNonZero);
    const uint64_t upright = workOf(scattered(250, 4, 2, 0.5), 4, kFillNonZero);
    EXPECT_GT(upright, 250u * 4);
    EXPECT_LT(upright * 3, turned);
}

// Chains left of all that is visible are not cut into slabs, and those right of it not either.
TEST(RasterWork, ChainsBesideTheClipAreCheap)
{
    uint64_t work[3];
    const double shifts[] = {0, -2.0 * kSide, 2.0 * kSide};
    for (int place = 0; place < 3; ++place) {
        Places places;
        std::vector<MMPoint2D> points = {at(-3.0 * kSide, 99), at(3.0 * kSide, 99)};
        for (int i = 0; i < 3000; ++i) {
            MMPoint2D p = places.within(10, 13);
            p.x += fx(shifts[place]);
            points.push_back(p);
        }
        work[place] = workOf(points, 3002, kFillEvenOdd);
    }
    EXPECT_LT(work[1] * 3, work[0]);
    EXPECT_LT(work[2] * 3, work[0]);
}

} // namespace
