// SPDX-License-Identifier: MIT
// Flattening of curves against the plainest form of the rule.
#include "graphics2d/paths/BezierFlattening.h"

#include "graphics2d/MMContext2D.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using Points = std::vector<MMPoint2D>;

// Recursive halving, with the second halves that wait counted instead of kept.
void modelHalve(const BezierCurve& c, int64_t tolerance, int waiting, Points& out)
{
    const auto half = [](MMPoint2D a, MMPoint2D b) {
        return MMPoint2D{(a.x + b.x) / 2, (a.y + b.y) / 2};
    };
    const auto cross = [](MMPoint2D a, MMPoint2D b, MMPoint2D c) {
        return int64_t{(b.x - a.x) >> 8} * ((c.y - b.y) >> 8) -
               int64_t{(b.y - a.y) >> 8} * ((c.x - b.x) >> 8);
    };
    const MMPoint2D l1 = half(c.start, c.control1), h = half(c.control1, c.control2);
    const MMPoint2D r2 = half(c.control2, c.end), l2 = half(l1, h), r1 = half(h, r2);
    const MMPoint2D m = half(l2, r1);
    const int64_t k1 = cross(c.start, m, c.end), k2 = cross(c.start, m, c.control1);
    const int64_t v = k2 + ((k1 < 0) == (k2 < 0) ? k1 : -k1);
    if (waiting == 10 || (-tolerance <= v && v <= tolerance)) {
        out.push_back(c.end);
        return;
    }
    modelHalve({c.start, l1, l2, m}, tolerance, waiting + 1, out);
    modelHalve({m, r1, r2, c.end}, tolerance, waiting, out);
}

// Asks for each point step places after the one before.
Points flatten(const Matrix2D& transform, const BezierCurve& c, int32_t step = 1)
{
    MMContext2D context;
    context.transform = transform;
    context.pointStep = step;
    const MMPoint2D untouched = at(-1, -2);
    Points room(kMaxCurvePoints * static_cast<size_t>(std::abs(step)) + 1, untouched), out;
    MMPoint2D* first = step < 0 ? &room.back() : room.data();
    const int32_t end = context.getBezierPts(first, c.start, c.control1, c.control2, c.end);
    for (int32_t i = 0; i != end; i += step)
        out.push_back(first[i]);
    EXPECT_EQ(step < 0 ? room.front() : room.back(), untouched);
    return out;
}

Matrix2D scaling(double x, double y)
{
    return {fx(x), 0, 0, fx(y), 0, 0};
}

TEST(BezierFlattening, EqualsThePlainModelAtEveryScale)
{
    std::vector<BezierCurve> curves = {{at(0, 0), at(10, 10), at(20, 20), at(30, 30)}, // straight
                                       {at(0, 0), at(0, 0), at(90, 40), at(90, 40)},
                                       // Products of these round sizes are whole multiples of 2^32.
                                       {at(0, 0), at(0, 512), at(512, 512), at(512, 0)}};
    std::mt19937 random(11);
    while (curves.size() < 3000) {
        const uint32_t size = 1u << (12 + random() % 17); // 1/16 to 4,096 units
        const auto point = [&] {
            const Fixed x = static_cast<Fixed>(random() % size - size / 2);
            return MMPoint2D{x, static_cast<Fixed>(random() % size)};
        };
        curves.push_back({point(), point(), point(), point()});
    }
    // |determinant| 1, 1/4, 16 and 900 and their tolerances of 2 / |determinant|.
    const struct {
        Matrix2D transform;
        int64_t tolerance;
    } scales[] = {{scaling(1, 1), 0xFFFFFFFF / 0x8000},
                  {scaling(0.5, -0.5), 0xFFFFFFFF / 0x2000},
                  {{0, fx(2), fx(8), 0, 5, 9}, 0xFFFFFFFF / 0x80000},
                  {scaling(30, 30), 0xFFFFFFFF / 0x1C20000}};
    size_t most = 0;
    for (const BezierCurve& c : curves)
        for (const auto& s : scales) {
            Points expected;
            modelHalve(c, s.tolerance, 0, expected);
            if (expected.size() > kMaxCurvePoints) continue;
            most = std::max(most, expected.size());
            const int32_t steps[] = {1, 2, -1};
            EXPECT_EQ(flatten(s.transform, c, steps[expected.size() % 3]), expected)
                << "curve " << &c - curves.data();
        }
    EXPECT_GT(most, 250u);
    EXPECT_EQ(flatten(scaling(1, 0), curves[2]), Points{at(512, 0)});
}

// Vast curves at vast scales reach the limit of points: the last one is still the end, and no edge
// jumps across a large part of the curve.
TEST(BezierFlattening, TheLongestCurvesStillEndAtTheirEnd)
{
    const Fixed far = INT_MAX;
    const BezierCurve curves[] = {
        {{-far, 0}, {-far, far}, {far, far}, {far, 0}},
        {{0, 0}, {1, 1}, {0, far}, {far, 0}}, // bends near its end only
        {{INT_MIN, INT_MIN}, {far, INT_MIN}, {INT_MIN, far}, {far, far}},
    };
    for (const BezierCurve& c : curves) {
        const Points points = flatten(scaling(100, 180), c);
        EXPECT_GT(points.size(), 250u);
        EXPECT_EQ(points.back(), c.end);
        MMPoint2D last = c.start;
        for (const MMPoint2D& p : points) {
            EXPECT_LT(std::hypot(double(p.x) - last.x, double(p.y) - last.y), double(far) / 50);
            last = p;
        }
        Points few(251, at(7, 7));
        EXPECT_EQ(flattenBezier(scaling(100, 180), c, few.data(), 250), points.size());
        EXPECT_EQ(few.back(), at(7, 7));
    }
}

} // namespace
