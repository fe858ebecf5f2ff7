// A plain model of filled polygons in double precision, against which the rasterisers are held, and
// the shapes that the tests draw.
#pragma once

#include "math/MMPoint2D.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace model {

using Polygon = std::vector<MMPoint2D>;

inline Fixed toFixed(double v)
{
    return static_cast<Fixed>(std::lround(v * 65536));
}

inline double toDouble(Fixed v)
{
    return v / 65536.0;
}

inline void add(Polygon& polygon, double x, double y)
{
    polygon.push_back({toFixed(x), toFixed(y)});
}

inline Polygon points(std::initializer_list<std::pair<double, double>> list)
{
    Polygon polygon;
    for (const auto& [x, y] : list)
        add(polygon, x, y);
    return polygon;
}

inline bool inside(int winding, bool evenOdd)
{
    return evenOdd ? (winding & 1) != 0 : winding != 0;
}

// An edge where a horizontal line meets it.
struct Crossing {
    double x;
    double slope; // x per y
    int winding;
};

// Crossings of the polygon with the horizontal line at y, from left to right. An edge owns its
// lower end and not its upper one.
inline std::vector<Crossing> crossings(const Polygon& polygon, double y)
{
    std::vector<Crossing> result;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        MMPoint2D a = polygon[i];
        MMPoint2D b = polygon[i + 1 < polygon.size() ? i + 1 : 0];
        int winding = 1;
        if (a.y > b.y) {
            std::swap(a, b);
            winding = -1;
        }
        if (!(toDouble(a.y) < y && y <= toDouble(b.y))) continue;
        const double slope = (toDouble(b.x) - toDouble(a.x)) / (toDouble(b.y) - toDouble(a.y));
        result.push_back({toDouble(a.x) + slope * (y - toDouble(a.y)), slope, winding});
    }
    std::sort(result.begin(), result.end(),
              [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
    return result;
}

// Calls back with the crossings at the left and at the right end of each span that is inside.
template <class Callback>
void forEachSpan(const Polygon& polygon, double y, bool evenOdd, Callback callback)
{
    int winding = 0;
    Crossing left{};
    for (const Crossing& crossing : crossings(polygon, y)) {
        const bool was = inside(winding, evenOdd);
        winding += crossing.winding;
        if (inside(winding, evenOdd) == was) continue;
        if (was)
            callback(left, crossing);
        else
            left = crossing;
    }
}

// The spans of the line at y that are inside.
inline std::vector<std::pair<double, double>> spans(const Polygon& polygon, double y, bool evenOdd)
{
    std::vector<std::pair<double, double>> result;
    forEachSpan(polygon, y, evenOdd, [&](const Crossing& left, const Crossing& right) {
        result.emplace_back(left.x, right.x);
    });
    return result;
}

// The share of the unit column from 0 to 1 that lies left of an edge, on average while the edge's x
// goes from a to b.
inline double shareLeftOf(double a, double b)
{
    const auto integral = [](double x) { return x <= 0 ? 0 : x >= 1 ? x - 0.5 : x * x / 2; };
    if (std::abs(b - a) < 1e-9) return std::clamp((a + b) / 2, 0.0, 1.0);
    return (integral(b) - integral(a)) / (b - a);
}

// The share of every pixel inside the polygon, 0 to 1. Pixel (c, r) is the unit square around the
// point (c, r). Every row is cut at its vertices and at the given number of steps; within a slab
// the edges at its middle are taken to run straight through, which is off only where they cross.
inline std::vector<double> areas(const Polygon& polygon, int width, int height, bool evenOdd,
                                 int steps = 64)
{
    std::vector<double> area(static_cast<std::size_t>(width * height));
    for (int row = 0; row < height; ++row) {
        std::vector<double> levels;
        for (int i = 0; i <= steps; ++i)
            levels.push_back(row - 0.5 + double(i) / steps);
        for (const MMPoint2D& p : polygon)
            if (std::abs(toDouble(p.y) - row) < 0.5) levels.push_back(toDouble(p.y));
        std::sort(levels.begin(), levels.end());
        for (std::size_t i = 1; i < levels.size(); ++i) {
            const double slab = levels[i] - levels[i - 1];
            const double y = (levels[i] + levels[i - 1]) / 2;
            if (slab <= 0) continue;
            forEachSpan(polygon, y, evenOdd, [&](const Crossing& left, const Crossing& right) {
                const double l = left.slope * slab / 2, r = right.slope * slab / 2;
                const int first = std::max(0, int(std::floor(left.x - std::abs(l) + 0.5)));
                const int last = std::min(width - 1, int(std::floor(right.x + std::abs(r) + 0.5)));
                for (int c = first; c <= last; ++c) {
                    const double edge = c - 0.5;
                    area[std::size_t(row * width + c)] +=
                        slab * (shareLeftOf(right.x - r - edge, right.x + r - edge) -
                                shareLeftOf(left.x - l - edge, left.x + l - edge));
                }
            });
        }
    }
    return area;
}

inline double distanceToSegment(double x, double y, const MMPoint2D& a, const MMPoint2D& b)
{
    const double ax = toDouble(a.x), ay = toDouble(a.y);
    const double dx = toDouble(b.x) - ax, dy = toDouble(b.y) - ay;
    const double length = dx * dx + dy * dy;
    const double t =
        length == 0 ? 0 : std::clamp(((x - ax) * dx + (y - ay) * dy) / length, 0.0, 1.0);
    return std::hypot(ax + t * dx - x, ay + t * dy - y);
}

inline double distanceToOutline(const Polygon& polygon, double x, double y)
{
    double least = 1e9;
    for (std::size_t i = 0; i < polygon.size(); ++i)
        least =
            std::min(least, distanceToSegment(x, y, polygon[i], polygon[(i + 1) % polygon.size()]));
    return least;
}

// --- Shapes
// ---------------------------------------------------------------------------------------

inline Polygon rectangle(double x0, double y0, double x1, double y1)
{
    return points({{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}});
}

// A self-crossing star that joins every step-th of the points on a circle.
inline Polygon star(double cx, double cy, double radius, int count, int step)
{
    Polygon p;
    for (int i = 0; i < count; ++i)
        add(p, cx + radius * std::cos(2 * M_PI * i * step / count),
            cy + radius * std::sin(2 * M_PI * i * step / count));
    return p;
}

inline Polygon circle(double cx, double cy, double radius, int count)
{
    return star(cx, cy, radius, count, 1);
}

// Points in turn on an outer and an inner circle.
inline Polygon burst(double cx, double cy, double outer, double inner, int count)
{
    Polygon p = circle(cx, cy, outer, 2 * count);
    const Polygon within = circle(cx, cy, inner, 2 * count);
    for (std::size_t i = 1; i < p.size(); i += 2)
        p[i] = within[i];
    return p;
}

// A band of the given width that winds inward.
inline Polygon spiral(double cx, double cy, double radius, double turns, double width, int points)
{
    Polygon p;
    for (int side = 0; side < 2; ++side) {
        for (int i = 0; i < points; ++i) {
            const double t = (side == 0 ? i : points - 1 - i) / double(points - 1);
            const double r = radius * (1 - t * 0.9) - (side == 0 ? 0 : width);
            add(p, cx + r * std::cos(2 * M_PI * turns * t),
                cy + r * std::sin(2 * M_PI * turns * t));
        }
    }
    return p;
}

inline Polygon random(unsigned seed, int points, double size)
{
    std::mt19937 generator(seed);
    Polygon p;
    for (int i = 0; i < points; ++i) {
        const double x = generator() / 4294967296.0 * size;
        const double y = generator() / 4294967296.0 * size;
        add(p, x + 2, y + 2);
    }
    return p;
}

// Several subpaths as one polygon, joined by bridges that are walked once each way.
inline Polygon bridged(const std::vector<Polygon>& parts)
{
    Polygon p;
    for (const Polygon& part : parts) {
        p.insert(p.end(), part.begin(), part.end());
        p.push_back(part.front());
    }
    for (std::size_t i = parts.size(); i-- > 0;)
        p.push_back(parts[i].front());
    return p;
}

inline Polygon reversed(Polygon p)
{
    std::reverse(p.begin(), p.end());
    return p;
}

} // namespace model
