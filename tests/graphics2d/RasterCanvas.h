// A small picture to fill polygons into, and the shapes that the rasteriser tests draw.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "tests/support/PolygonModel.h"

#include <vector>

namespace rastertest {

using namespace KAVO::Graphics2D;
using model::Polygon;

constexpr int kWidth = 140;
constexpr int kHeight = 130;

// White on black: a pixel's blue channel is its coverage.
struct Canvas {
    std::vector<Pixel> pixels = std::vector<Pixel>(kWidth * kHeight, 0xFF000000);
    MMContext2D context;

    Canvas()
    {
        context.target = {kWidth, kHeight, kWidth * 4, 0xFFFFFFFF, pixels.data(), 0};
        context.clipRight = kWidth;
        context.clipBottom = kHeight;
        context.antiAlias = 1;
        context.currentPaint = context.fillPaint;
        context.currentPaint.paintColour = 0xFFFFFFFF;
    }
    int at(int x, int y) const { return int(pixels[std::size_t(y * kWidth + x)] & 0xFF); }
    void fill(Polygon polygon)
    {
        context.rasterPolygon(polygon.data(), static_cast<uint16_t>(polygon.size()));
    }
};

struct Shape {
    const char* name;
    Polygon polygon;
    double mean; // allowed error over edge pixels, in 1/255
    double worst;
};

inline std::vector<Shape> shapes()
{
    using namespace model;
    std::vector<Shape> list;
    const auto fine = [&](const char* name, Polygon p) { list.push_back({name, p, 0.4, 1.7}); };
    const auto usual = [&](const char* name, Polygon p) { list.push_back({name, p, 0.5, 16}); };
    fine("rectangle at quarters", rectangle(10.25, 7.75, 90.5, 60.125));
    fine("rectangle at odd places", rectangle(3.37, 2.91, 120.83, 77.13));
    fine("narrow upright rectangle", rectangle(30.22, 5.1, 30.61, 100.3));
    fine("two-row rectangle", rectangle(10.3, 20.4, 90.1, 21.7));
    for (double r : {3.0, 5.5, 10.2, 25.0, 60.0})
        fine("circle", circle(64.3, 63.8, r, int(r * 2) + 12));
    fine("turned sliver", points({{10, 10}, {110, 90}, {110.3, 89.5}}));
    fine("flat sliver", points({{5, 40.2}, {130, 43.9}, {130, 44.6}}));
    fine("steep sliver", points({{50, 5}, {52.3, 120}, {51.9, 121}}));
    usual("near-horizontal edges", points({{2, 20}, {135, 20.4}, {134, 60.1}, {1, 59.7}}));
    usual("star 5/2", star(64, 64, 58, 5, 2));
    usual("star 9/4", star(64, 64, 58, 9, 4));
    usual("star 31/15", star(64, 64, 58, 31, 15));
    usual("star 101/50", star(64, 64, 58, 101, 50));
    usual("burst of 12", burst(64, 64, 60, 20, 12));
    usual("burst of 100", burst(64, 64, 60, 40, 100));
    usual("small teeth", burst(64, 64, 60, 59.2, 400));
    usual("spiral", spiral(64, 64, 60, 5, 4, 300));
    usual("bow-tie", points({{10, 10}, {110, 80}, {110, 10}, {10, 80}}));
    usual("hourglass", points({{10.3, 10}, {80, 100.2}, {10, 100.2}, {80.1, 10}}));
    const Polygon ring = circle(60, 60, 50, 40), hole = circle(62, 58, 30, 30);
    usual("nested, same way", bridged({ring, hole}));
    usual("nested, other way", bridged({ring, reversed(hole)}));
    usual("overlapping circles",
          bridged({circle(50, 60, 40, 40), circle(80, 65, 40, 40), circle(64, 40, 30, 30)}));
    // Starts inside a row on both sides of edges that pass the whole row.
    usual("bar behind an upright one",
          bridged({rectangle(20, 2, 30, 30),
                   points({{5, 10.8}, {6, 10.4}, {44, 10.4}, {45, 10.8}, {45, 20}, {5, 20}})}));
    Polygon comb, saw;
    for (int i = 0; i < 40; ++i) {
        const double x = 5 + i * 3;
        for (auto [dx, y] : {std::pair{0.0, 60.3}, {0.0, 20.7}, {1.4, 20.7}, {1.4, 60.3}})
            add(comb, x + dx, y);
        add(saw, x, 20.1 + 0.37 * i / 40);
        add(saw, x + 1.5, 20.9 - 0.5 * (i % 7) / 7);
    }
    for (auto [x, y] : {std::pair{125.0, 60.3}, {125.0, 70.0}, {5.0, 70.0}})
        add(comb, x, y);
    add(saw, 125, 60.5);
    add(saw, 5, 60.5);
    usual("comb", comb);
    usual("saw within one row", saw);
    Polygon flat = random(9, 40, 110), squeezed = flat;
    for (std::size_t i = 0; i < flat.size(); ++i) {
        flat[i].y = toFixed(20) + flat[i].y / 40;
        squeezed[i].y = toFixed(19.6) + squeezed[i].y / 140;
    }
    list.push_back({"tangle in three rows", flat, 0.8, 16});
    list.push_back({"tangle in one row", squeezed, 1.0, 16});
    list.push_back({"tangle of 40", random(7, 40, 120), 0.8, 16});
    return list;
}

} // namespace rastertest
