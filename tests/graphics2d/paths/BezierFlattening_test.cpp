// SPDX-License-Identifier: MIT
// Flattening of curves against the plainest form of the rule.
#include "graphics2d/paths/BezierFlattening.h"

#include "graphics2d/MMContext2D.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <complex>
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
        return MMPoint2D{static_cast<Fixed>((int64_t{a.x} + b.x) / 2),
                         static_cast<Fixed>((int64_t{a.y} + b.y) / 2)};
    };
    const auto cross = [](MMPoint2D a, MMPoint2D b, MMPoint2D c) {
        return ((int64_t{b.x} - a.x) >> 8) * ((int64_t{c.y} - b.y) >> 8) -
               ((int64_t{b.y} - a.y) >> 8) * ((int64_t{c.x} - b.x) >> 8);
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
                                       {at(0, 0), at(0, 512), at(512, 512), at(512, 0)},
                                       // Sums of these coordinates do not fit 32 bits.
                                       {{-0x7FFFFFFF, -0x7FFFFFFE},
                                        {-0x7FFFFFFE, -0x7FFFFFFF},
                                        {0x7FFFFFFE, -0x7FFFFFFF},
                                        {0x7FFFFFFF, 0x7FFFFFFE}}};
    std::mt19937 random(11);
    while (curves.size() < 3000) {
        const uint32_t size = 1u << (12 + random() % 17); // 1/16 to 4,096 units
        const auto point = [&] {
            const Fixed x = static_cast<Fixed>(random() % size - size / 2);
            return MMPoint2D{x, static_cast<Fixed>(random() % size)};
        };
        curves.push_back({point(), point(), point(), point()});
    }
    // |determinant| 1, 1/4, 16, 900 and 1/1024 and their tolerances of 2 / |determinant|.
    const struct {
        Matrix2D transform;
        int64_t tolerance;
    } scales[] = {{scaling(1, 1), 0xFFFFFFFF / 0x8000},
                  {scaling(0.5, -0.5), 0xFFFFFFFF / 0x2000},
                  {{0, 2_fx, 8_fx, 0, 5, 9}, 0xFFFFFFFF / 0x80000},
                  {scaling(30, 30), 0xFFFFFFFF / 0x1C20000},
                  {scaling(1.0 / 32, 1.0 / 32), 0xFFFFFFFF / 0x20}};
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
        EXPECT_EQ(flattenBezier({scaling(100, 180), false}, c, few.data(), 250), points.size());
        EXPECT_EQ(few.back(), at(7, 7));
    }
}

// By the refined rule: samples of the curve on the device lie within 1/32 of a pixel of the chords,
// and neighbouring chords, each of a piece that turns by at most 15 degrees, by little more.
TEST(BezierFlattening, TheRefinedRuleKeepsToTheCurveOnTheDevice)
{
    using Vector = std::complex<double>;
    std::mt19937 random(12);
    const auto within = [&random](double low, double high) {
        return low + (high - low) * (random() / 4294967296.0);
    };
    for (int round = 0; round < 2000; ++round) {
        const double size = std::exp(within(-1, 6)), scale = std::exp(within(-3, 2));
        const auto point = [&] { return at(within(0, size), within(0, size)); };
        BezierCurve c = {point(), point(), point(), point()};
        if (round % 16 == 0) c.end = c.start; // no chord at first
        const Matrix2D m = {fx(scale * within(-1, 1)),
                            fx(scale * within(-1, 1)),
                            fx(scale * within(-1, 1)),
                            fx(scale * within(-1, 1)),
                            0,
                            0};
        const auto device = [&m](MMPoint2D p) {
            const double x = p.x / 65536.0, y = p.y / 65536.0;
            return Vector(m.a * x + m.c * y, m.b * x + m.d * y) / 65536.0;
        };
        Points points(kMaxCurvePoints);
        points.resize(flattenBezier({m, true}, c, points.data(), kMaxCurvePoints));
        EXPECT_EQ(points.back(), c.end);
        points.insert(points.begin(), c.start);
        size_t piece = 0; // the samples run along the chords
        double worst = 0;
        for (int i = 0; i <= 400; ++i) {
            const double t = i / 400.0, u = 1 - t;
            const Vector p = u * u * u * device(c.start) + 3 * u * u * t * device(c.control1) +
                             3 * u * t * t * device(c.control2) + t * t * t * device(c.end);
            const auto distance = [&](size_t k) {
                const Vector a = device(points[k]), ab = device(points[k + 1]) - a;
                const double length = std::norm(ab);
                const double along =
                    length > 0 ? std::clamp((std::conj(ab) * (p - a)).real() / length, 0.0, 1.0)
                               : 0;
                return std::abs(p - a - along * ab);
            };
            while (piece + 2 < points.size() && distance(piece + 1) <= distance(piece))
                ++piece;
            worst = std::max(worst, distance(piece));
        }
        EXPECT_LE(worst, 1.0 / 32 + 0.02) << round;
        for (size_t i = 1; i + 1 < points.size(); ++i) {
            const Vector before = device(points[i]) - device(points[i - 1]);
            const Vector after = device(points[i + 1]) - device(points[i]);
            if (std::abs(before) < 0.1 || std::abs(after) < 0.1) continue;
            EXPECT_LE(std::abs(std::arg(after / before)), 20 * M_PI / 180) << round;
        }
    }
}

} // namespace
