// SPDX-License-Identifier: MIT
#include "graphics2d/convenience/MMPathBuilder.h"

#include "math/FixedLiteral.h"
#include "tests/support/FailingHeap.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

std::vector<uint32_t> wordsOf(const MMPathBuilder& path)
{
    return {path.words(), path.words() + path.wordCount()};
}

uint32_t word(Fixed v)
{
    return static_cast<uint32_t>(v);
}

struct Point {
    double x;
    double y;
};

Point operator+(Point a, Point b)
{
    return {a.x + b.x, a.y + b.y};
}

Point operator*(Point p, double factor)
{
    return {p.x * factor, p.y * factor};
}

Point onCurve(const Point* p, double t)
{
    const double s = 1 - t;
    return p[0] * (s * s * s) + p[1] * (3 * s * s * t) + p[2] * (3 * s * t * t) +
           p[3] * (t * t * t);
}

// The points of a path that is one subpath of a start and curves, 1/65536 each.
std::vector<Point> curvePoints(const MMPathBuilder& path)
{
    std::vector<Point> points;
    const uint32_t* words = path.words();
    for (size_t i = 2; i + 1 < path.wordCount(); i += 2) {
        if (i == 4) ++i; // the command of the curves
        points.push_back({double(int32_t(words[i])), double(int32_t(words[i + 1]))});
    }
    return points;
}

// An arc from its ends as documents define it, in double precision.
struct ArcModel {
    Point centre;
    double rx, ry, cosine, sine;
    double start, sweep; // radians
    double lever;        // how many times a relative error of the chord moves the centre

    ArcModel(Point from, Point to, double rx0, double ry0, double rotation, bool large,
             bool increasing)
        : rx(rx0), ry(ry0), cosine(std::cos(rotation)), sine(std::sin(rotation))
    {
        const Point half = (from + to * -1) * 0.5;
        const double x = (half.x * cosine + half.y * sine) / rx;
        const double y = (half.y * cosine - half.x * sine) / ry;
        const double square = x * x + y * y;
        const double enlarge = std::fmax(1, std::sqrt(square));
        rx *= enlarge;
        ry *= enlarge;
        const double left = std::fmax(0, 1 / square - 1);
        lever = 1 / std::sqrt(std::fmax(left * square, 1e-10));
        const double side = (large != increasing ? 1 : -1) * std::sqrt(left);
        const Point c = {side * y, -side * x};
        const Point offset = {rx * c.x * cosine - ry * c.y * sine,
                              rx * c.x * sine + ry * c.y * cosine};
        centre = (from + to) * 0.5 + offset;
        start = angleOf(from);
        sweep = angleOf(to) - start;
        const double turn = 2 * std::acos(-1.0);
        if (increasing && sweep < 0) sweep += turn;
        if (!increasing && sweep > 0) sweep -= turn;
    }

    // Nothing of the ellipse is held at an end of the range.
    bool inRange() const
    {
        const double x = std::fabs(centre.x) + std::hypot(rx * cosine, ry * sine);
        const double y = std::fabs(centre.y) + std::hypot(rx * sine, ry * cosine);
        return std::fmax(x, y) < INT32_MAX / 1.1; // control points lie outside
    }

    Point toUnit(Point p) const
    {
        const Point d = p + centre * -1;
        return {(d.x * cosine + d.y * sine) / rx, (d.y * cosine - d.x * sine) / ry};
    }
    // From the ellipse, for points near it.
    double distance(Point unit) const
    {
        return std::fabs(std::hypot(unit.x, unit.y) - 1) / std::hypot(unit.x / rx, unit.y / ry);
    }
    double angleOf(Point p) const
    {
        const Point u = toUnit(p);
        return std::atan2(u.y, u.x);
    }
};

} // namespace

TEST(PathBuilder, WordsByHand)
{
    MMPathBuilder path;
    EXPECT_TRUE(path.empty());
    EXPECT_EQ(wordsOf(path), std::vector<uint32_t>{0});
    path.moveTo(9_fx, 9_fx).moveTo(1_fx, 2_fx).lineTo(3_fx, 4_fx).lineBy(1_fx, -1_fx);
    path.cubicTo(5, 6, 7, 8, 9, 10).cubicBy(1, 1, 2, 2, 3, 3).lineTo(0, 0).close();
    path.lineTo(7_fx, 7_fx);           // from where the closed subpath began
    path.moveTo(4_fx, 4_fx).close();   // a dot
    path.close().moveTo(50_fx, 50_fx); // nothing
    const std::vector<uint32_t> expected = {3 | 6u << 16,
                                            3,
                                            word(1_fx),
                                            word(2_fx),
                                            word(3_fx),
                                            word(4_fx),
                                            word(4_fx),
                                            word(3_fx),
                                            2 | 1u << 28,
                                            5,
                                            6,
                                            7,
                                            8,
                                            9,
                                            10,
                                            10,
                                            11,
                                            11,
                                            12,
                                            12,
                                            13,
                                            1 | 3u << 30,
                                            0,
                                            0,
                                            2 | 1u << 30,
                                            word(1_fx),
                                            word(2_fx),
                                            word(7_fx),
                                            word(7_fx),
                                            1 | 3u << 30,
                                            word(4_fx),
                                            word(4_fx)};
    EXPECT_EQ(wordsOf(path), expected);
    EXPECT_EQ(path.storedPath() + 1, path.words());
    EXPECT_TRUE(path.currentPoint() == (MMPoint2D{50_fx, 50_fx}));

    MMPathBuilder taken = std::move(path);
    EXPECT_EQ(wordsOf(taken), expected);
    EXPECT_TRUE(path.empty()); // NOLINT: moved from is as new
    taken.clear();
    EXPECT_TRUE(taken.empty());
    taken.rect(1, 2, 10, 20);
    EXPECT_EQ(wordsOf(taken),
              (std::vector<uint32_t>{1 | 1u << 16, 4 | 3u << 30, 1, 2, 11, 2, 11, 22, 1, 22}));
}

TEST(PathBuilder, RelativePointsStopAtTheEndsOfTheRange)
{
    MMPathBuilder path;
    path.moveTo(INT32_MAX - 1, INT32_MIN + 1).moveBy(1, -1).lineBy(5, -5).quadBy(1, 1, 0, 0);
    path.rect(0, INT32_MAX, 1, 1);
    const uint32_t most = INT32_MAX;
    const uint32_t least = 0x80000000;
    const std::vector<uint32_t> words = wordsOf(path);
    EXPECT_EQ((std::vector<uint32_t>(words.begin() + 2, words.begin() + 6)),
              (std::vector<uint32_t>{most, least, most, least}));
    EXPECT_EQ(words.back(), most);
}

TEST(PathBuilder, QuadraticsAreCubicsOfTheSameShape)
{
    std::mt19937 engine(7);
    for (int i = 0; i < 10000; ++i) {
        int32_t v[6];
        for (int32_t& value : v)
            value = static_cast<int32_t>(engine()) >> engine() % 24;
        MMPathBuilder path;
        path.moveTo(v[0], v[1]).quadTo(v[2], v[3], v[4], v[5]);
        const std::vector<Point> points = curvePoints(path);
        for (int end = 0; end < 2; ++end) {
            const double x = (v[4 * end] + 2.0 * v[2]) / 3;
            const double y = (v[4 * end + 1] + 2.0 * v[3]) / 3;
            ASSERT_NEAR(points[1 + end].x, x, 0.5) << v[0] << ' ' << v[2] << ' ' << v[4];
            ASSERT_NEAR(points[1 + end].y, y, 0.5) << v[1] << ' ' << v[3] << ' ' << v[5];
        }
    }
}

// Chords and radii of all sizes, half circles and full turns among them.
TEST(PathBuilder, ArcsFollowTheirEllipse)
{
    std::mt19937 engine(5);
    const auto coordinate = [&](int bits) { return static_cast<int32_t>(engine()) >> (31 - bits); };
    int arcs = 0;
    for (int i = 0; i < 60000; ++i) {
        const int chordBits = static_cast<int>(5 + engine() % 25);
        const MMPoint2D from = {coordinate(29), coordinate(29)};
        const MMPoint2D to = {from.x + coordinate(chordBits), from.y + coordinate(chordBits)};
        int32_t rx = coordinate(static_cast<int>(8 + engine() % 23));
        int32_t ry = engine() % 3 ? coordinate(static_cast<int>(8 + engine() % 23)) : rx;
        Degrees rotation = engine() % 4 ? coordinate(31) : coordinate(3) * kDegrees90;
        if (i % 8 == 0) { // half of a circle
            rx = ry = (to.x - from.x) / 2;
            rotation = 0;
        }
        const bool large = engine() & 1, increasing = engine() & 1;
        if (rx == 0 || ry == 0 || from == to) continue;

        MMPathBuilder path;
        path.moveTo(from.x, from.y).arcTo(rx, ry, rotation, large, increasing, to.x, to.y);
        const Point start = {double(from.x), double(from.y)};
        const Point end = {double(to.x), double(to.y)};
        const ArcModel model(start, end, std::fabs(rx), std::fabs(ry),
                             rotation / 65536.0 * std::acos(-1.0) / 180, large, increasing);
        SCOPED_TRACE(testing::Message()
                     << "arc " << i << " from " << from.x << ' ' << from.y << " to " << to.x << ' '
                     << to.y << " radii " << rx << ' ' << ry << " rotation " << rotation
                     << " large " << large << " increasing " << increasing);
        if (!model.inRange()) continue;
        const std::vector<Point> points = curvePoints(path);
        ASSERT_EQ((points.size() - 1) % 3, 0u);
        ASSERT_TRUE(points.back().x == end.x && points.back().y == end.y);
        const double longest = std::fmax(model.rx, model.ry);
        const double moved = longest * std::fmin(4e-9 * model.lever, 8e-5);
        const double allowed = 4 + 5e-6 * longest + moved;
        const double slack = 1e-5 + 2 * allowed / std::fmin(model.rx, model.ry); // of angles
        double sweep = 0;
        Point last = model.toUnit(start);
        for (size_t curve = 0; curve + 3 < points.size(); curve += 3) {
            for (const double t : {0.3, 0.5, 1.0}) {
                const Point unit = model.toUnit(onCurve(&points[curve], t));
                ASSERT_LE((std::fabs(unit.x) - 1) * model.rx, allowed);
                ASSERT_LE((std::fabs(unit.y) - 1) * model.ry, allowed);
                const double step = std::atan2(last.x * unit.y - last.y * unit.x,
                                               last.x * unit.x + last.y * unit.y);
                if (slack < 0.1) { // wider than a few units
                    ASSERT_LE(model.distance(unit), allowed);
                    ASSERT_GE(increasing ? step : -step, -slack);
                }
                sweep += step;
                last = unit;
            }
        }
        if (slack < 0.1) {
            ASSERT_NEAR(sweep, model.sweep, slack);
        }
        arcs += slack < 0.1;
    }
    EXPECT_GT(arcs, 20000);
}

TEST(PathBuilder, CirclesAreRound)
{
    for (const Fixed radius : {1, 5, 1000, 65536, 5 << 16, 1000 << 16, 30000 << 16}) {
        MMPathBuilder path;
        path.circle(-7_fx, 11_fx, radius);
        EXPECT_TRUE(path.currentPoint() == (MMPoint2D{-7_fx + radius, 11_fx}));
        const std::vector<Point> points = curvePoints(path);
        ASSERT_EQ(points.size(), 25u);
        EXPECT_EQ(points.front().x, points.back().x);
        EXPECT_EQ(points.front().y, points.back().y);
        for (size_t curve = 0; curve < 24; curve += 3)
            for (double t = 0; t <= 1; t += 0.125) {
                const Point p = onCurve(&points[curve], t) + Point{7 * 65536.0, -11 * 65536.0};
                ASSERT_NEAR(std::hypot(p.x, p.y), radius, 1.5 + 5e-6 * radius) << curve << ' ' << t;
            }
        EXPECT_GT(points[3].y, points[0].y - (radius == 1)); // down first: increasing angles
    }
    MMPathBuilder none;
    EXPECT_TRUE(none.circle(0, 0, 0).circle(5, 5, -1).empty());
}

TEST(PathBuilder, MoreSubpathsThanAHeaderCountsAreLeftOut)
{
    MMPathBuilder path;
    for (Fixed i = 0; i < 65540; ++i)
        path.moveTo(i, i).lineTo(i, 0);
    path.lineTo(1, 1).close();
    EXPECT_EQ(path.words()[0], 0xFFFFFFFFu); // both counts at their greatest
    EXPECT_EQ(path.wordCount(), 1 + 65535u * 5);
    EXPECT_EQ(path.words()[path.wordCount() - 2], 65534u);
    EXPECT_FALSE(path.outOfMemory());
}

TEST(PathBuilder, WithoutMemoryThePathIsEmpty)
{
    const auto build = [](MMPathBuilder& path) {
        for (Fixed i = 0; i < 500; ++i)
            path.lineTo(i, 2 * i).arcTo(1_fx, 2_fx, 30_fx, true, false, i, 5_fx);
        path.close();
    };
    MMPathBuilder whole;
    build(whole);
    const uint32_t calls = failEachAllocation([&] {
        MMPathBuilder path;
        build(path);
        EXPECT_EQ(wordsOf(path), path.outOfMemory() ? std::vector<uint32_t>{0} : wordsOf(whole));
        path.clear();
        EXPECT_FALSE(path.outOfMemory());
    });
    EXPECT_GT(calls, 5u);
    EXPECT_LT(calls, 20u); // it doubles
}
