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

constexpr double kMean = 0.5, kWorst = 16, kFineMean = 0.4, kFineWorst = 1.7;

inline std::vector<Shape> shapes()
{
    using namespace model;
    std::vector<Shape> list;
    list.push_back(
        {"rectangle at quarters", rectangle(10.25, 7.75, 90.5, 60.125), kFineMean, kFineWorst});
    list.push_back(
        {"rectangle at odd places", rectangle(3.37, 2.91, 120.83, 77.13), kFineMean, kFineWorst});
    list.push_back(
        {"narrow upright rectangle", rectangle(30.22, 5.1, 30.61, 100.3), kFineMean, kFineWorst});
    list.push_back({"two-row rectangle", rectangle(10.3, 20.4, 90.1, 21.7), kFineMean, kFineWorst});
    for (double r : {3.0, 5.5, 10.2, 25.0, 60.0})
        list.push_back({"circle", circle(64.3, 63.8, r, int(r * 2) + 12), kFineMean, kFineWorst});
    list.push_back(
        {"turned sliver",
         {{toFixed(10), toFixed(10)}, {toFixed(110), toFixed(90)}, {toFixed(110.3), toFixed(89.5)}},
         kFineMean,
         kFineWorst});
    list.push_back({"flat sliver",
                    {{toFixed(5), toFixed(40.2)},
                     {toFixed(130), toFixed(43.9)},
                     {toFixed(130), toFixed(44.6)}},
                    kFineMean,
                    kFineWorst});
    list.push_back(
        {"steep sliver",
         {{toFixed(50), toFixed(5)}, {toFixed(52.3), toFixed(120)}, {toFixed(51.9), toFixed(121)}},
         kFineMean,
         kFineWorst});
    list.push_back({"near-horizontal edges",
                    {{toFixed(2), toFixed(20)},
                     {toFixed(135), toFixed(20.4)},
                     {toFixed(134), toFixed(60.1)},
                     {toFixed(1), toFixed(59.7)}},
                    kMean,
                    kWorst});
    list.push_back({"star 5/2", star(64, 64, 58, 5, 2), kMean, kWorst});
    list.push_back({"star 9/4", star(64, 64, 58, 9, 4), kMean, kWorst});
    list.push_back({"star 31/15", star(64, 64, 58, 31, 15), kMean, kWorst});
    list.push_back({"star 101/50", star(64, 64, 58, 101, 50), kMean, kWorst});
    list.push_back({"burst of 12", burst(64, 64, 60, 20, 12), kMean, kWorst});
    list.push_back({"burst of 100", burst(64, 64, 60, 40, 100), kMean, kWorst});
    list.push_back({"spiral", spiral(64, 64, 60, 5, 4, 300), kMean, kWorst});
    list.push_back({"bow-tie",
                    {{toFixed(10), toFixed(10)},
                     {toFixed(110), toFixed(80)},
                     {toFixed(110), toFixed(10)},
                     {toFixed(10), toFixed(80)}},
                    kMean,
                    kWorst});
    list.push_back({"hourglass",
                    {{toFixed(10.3), toFixed(10)},
                     {toFixed(80), toFixed(100.2)},
                     {toFixed(10), toFixed(100.2)},
                     {toFixed(80.1), toFixed(10)}},
                    kMean,
                    kWorst});
    list.push_back({"nested, same way", bridged({circle(60, 60, 50, 40), circle(62, 58, 30, 30)}),
                    kMean, kWorst});
    list.push_back({"nested, other way",
                    bridged({circle(60, 60, 50, 40), reversed(circle(62, 58, 30, 30))}), kMean,
                    kWorst});
    list.push_back(
        {"overlapping circles",
         bridged({circle(50, 60, 40, 40), circle(80, 65, 40, 40), circle(64, 40, 30, 30)}), kMean,
         kWorst});
    Polygon comb, saw;
    for (int i = 0; i < 40; ++i) {
        const double x = 5 + i * 3;
        for (auto [dx, y] : {std::pair{0.0, 60.3}, {0.0, 20.7}, {1.4, 20.7}, {1.4, 60.3}})
            add(comb, x + dx, y);
        add(saw, x, 20.1 + 0.37 * i / 40);
        add(saw, x + 1.5, 20.9 - 0.5 * (i % 7) / 7);
    }
    add(comb, 125, 60.3);
    add(comb, 125, 70);
    add(comb, 5, 70);
    add(saw, 125, 60.5);
    add(saw, 5, 60.5);
    list.push_back({"comb", comb, kMean, kWorst});
    list.push_back({"saw within one row", saw, kMean, kWorst});
    Polygon flat = random(9, 40, 110), squeezed = random(9, 40, 110);
    for (std::size_t i = 0; i < flat.size(); ++i) {
        flat[i].y = toFixed(20) + flat[i].y / 40;
        squeezed[i].y = toFixed(19.6) + squeezed[i].y / 140;
    }
    list.push_back({"tangle in three rows", flat, 0.8, kWorst});
    list.push_back({"tangle in one row", squeezed, 1.0, kWorst});
    list.push_back({"small teeth", burst(64, 64, 60, 59.2, 400), kMean, kWorst});
    list.push_back({"tangle of 40", random(7, 40, 120), 0.8, kWorst});
    list.push_back({"tangle of 12", random(3, 12, 120), kMean, kWorst});
    return list;
}

} // namespace rastertest
