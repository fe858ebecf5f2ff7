// SPDX-License-Identifier: MIT
// The shapes that the rasteriser tests fill.
#pragma once

#include "tests/support/PolygonModel.h"

#include <random>

namespace model {

inline Polygon rectangle(double x0, double y0, double x1, double y1)
{
    return points({{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}});
}

// Joins every step-th of the points on a circle.
inline Polygon star(double cx, double cy, double radius, int count, int step)
{
    Polygon p;
    for (int i = 0; i < count; ++i)
        add(p, cx + radius * std::cos(2 * M_PI * i * step / count),
            cy + radius * std::sin(2 * M_PI * i * step / count));
    return p;
}

// All edges cross all others within a sixteenth of a row.
inline Polygon flatStar()
{
    Polygon p = star(64, 0, 50, 41, 20);
    for (MMPoint2D& point : p)
        point.y = toFixed(20.53) + point.y / 2000;
    return p;
}

inline Polygon circle(double cx, double cy, double radius, int count)
{
    return star(cx, cy, radius, count, 1);
}

// Points in turn on an outer and an inner circle.
inline Polygon burst(double outer, double inner, int count)
{
    Polygon p = circle(64, 64, outer, 2 * count);
    const Polygon within = circle(64, 64, inner, 2 * count);
    for (std::size_t i = 1; i < p.size(); i += 2)
        p[i] = within[i];
    return p;
}

// Random points, in a band of rows.
inline Polygon tangle(unsigned seed, double width, double top, double height)
{
    std::mt19937 random(seed);
    Polygon p;
    for (int i = 0; i < 40; ++i) {
        const double x = random() / 4294967296.0, y = random() / 4294967296.0;
        add(p, 2 + x * width, top + y * height);
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

inline Polygon comb()
{
    Polygon p = points({{125, 60.3}, {125, 70}, {5, 70}});
    for (double x = 5; x < 125; x += 3)
        for (auto [dx, y] : {std::pair{0.0, 60.3}, {0.0, 20.7}, {1.4, 20.7}, {1.4, 60.3}})
            add(p, x + dx, y);
    return p;
}

inline Polygon sawWithinOneRow()
{
    Polygon p = points({{125, 60.5}, {5, 60.5}});
    for (int i = 0; i < 40; ++i) {
        add(p, 5 + i * 3, 20.1 + 0.37 * i / 40);
        add(p, 6.5 + i * 3, 20.9 - 0.5 * (i % 7) / 7);
    }
    return p;
}

// Errors allowed over edge pixels, in 1/255.
struct Bounds {
    double mean, worst;
};

struct Shape {
    const char* name;
    Polygon polygon;
    Bounds error;
};

inline std::vector<Shape> shapes()
{
    constexpr Bounds kFine = {0.4, 1.7}, kUsual = {0.5, 16};
    const Polygon ring = circle(60, 60, 50, 40), hole = circle(62, 58, 30, 30);
    const Polygon early = // starts inside a row on both sides of edges that pass the whole row
        points({{5, 10.8}, {6, 10.4}, {44, 10.4}, {45, 10.8}, {45, 20}, {5, 20}});
    return {
        {"rectangle at quarters", rectangle(10.25, 7.75, 90.5, 60.125), kFine},
        {"rectangle at odd places", rectangle(3.37, 2.91, 120.83, 77.13), kFine},
        {"narrow upright rectangle", rectangle(30.22, 5.1, 30.61, 100.3), kFine},
        {"two-row rectangle", rectangle(10.3, 20.4, 90.1, 21.7), kFine},
        {"small circle", circle(64.3, 63.8, 3, 18), kFine},
        {"middling circle", circle(64.3, 63.8, 10.2, 32), kFine},
        {"large circle", circle(64.3, 63.8, 60, 132), kFine},
        {"turned sliver", points({{10, 10}, {110, 90}, {110.3, 89.5}}), kFine},
        {"flat sliver", points({{5, 40.2}, {130, 43.9}, {130, 44.6}}), kFine},
        {"steep sliver", points({{50, 5}, {52.3, 120}, {51.9, 121}}), kFine},
        {"roof", points({{70, 10}, {135, 30.5}, {5, 28}}), kFine},
        {"stairs", points({{40, 5}, {30, 5.5}, {30, 20.25}, {15, 20.25}, {22, 50.5}, {18, 50.5}}),
         kFine},
        {"near-horizontal", points({{2, 20}, {135, 20.4}, {134, 60.1}, {1, 59.7}}), kUsual},
        {"star 5/2", star(64, 64, 58, 5, 2), kUsual},
        {"star 9/4", star(64, 64, 58, 9, 4), kUsual},
        {"star 31/15", star(64, 64, 58, 31, 15), kUsual},
        {"star 101/50", star(64, 64, 58, 101, 50), kUsual},
        {"burst of 12", burst(60, 20, 12), kUsual},
        {"burst of 100", burst(60, 40, 100), kUsual},
        {"small teeth", burst(60, 59.2, 400), kUsual},
        {"bow-tie", points({{10, 10}, {110, 80}, {110, 10}, {10, 80}}), kUsual},
        {"hourglass", points({{10.3, 10}, {80, 100.2}, {10, 100.2}, {80.1, 10}}), kUsual},
        {"nested, same way", bridged({ring, hole}), kUsual},
        {"nested, other way", bridged({ring, reversed(hole)}), kUsual},
        {"overlapping circles", bridged({ring, circle(80, 65, 40, 40), hole}), kUsual},
        {"bar behind an upright one", bridged({rectangle(20, 2, 30, 30), early}), kUsual},
        {"comb", comb(), kUsual},
        {"saw within one row", sawWithinOneRow(), kUsual},
        {"star within a sixteenth of a row", flatStar(), {4.5, 16}},
        {"tangle in three rows", tangle(9, 110, 20, 2.75), {0.8, 16}},
        {"tangle in one row", tangle(9, 110, 19.6, 0.8), {1.0, 16}},
        {"tangle of 40", tangle(7, 120, 2, 120), {0.8, 16}},
    };
}

} // namespace model
