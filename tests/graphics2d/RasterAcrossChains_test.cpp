// A shape that starts inside a row on both sides of edges that pass the whole row.
#include "graphics2d/MMContext2D.h"

#include <gtest/gtest.h>
#include <vector>

using namespace KAVO::Graphics2D;

namespace {

constexpr Fixed at(double v)
{
    return static_cast<Fixed>(v * 65536);
}

TEST(RasterAcrossChains, BarBehindAnUprightOne)
{
    // Upright: columns 20 to 30. Lying: its top at y = 10.4 from 6 to 44, corners down to 10.8 at 5
    // and 45, so that vertices of both its sides lie inside row 10.
    const MMPoint2D upright[] = {
        {at(20), at(2)}, {at(30), at(2)}, {at(30), at(30)}, {at(20), at(30)}};
    const MMPoint2D lying[] = {{at(5), at(10.8)},  {at(6), at(10.4)}, {at(44), at(10.4)},
                               {at(45), at(10.8)}, {at(45), at(20)},  {at(5), at(20)}};
    std::vector<uint32_t> path = {2};
    path.push_back(4u | 3u << 30);
    for (const MMPoint2D& p : upright)
        path.insert(path.end(), {static_cast<uint32_t>(p.x), static_cast<uint32_t>(p.y)});
    path.push_back(6u | 3u << 30);
    for (const MMPoint2D& p : lying)
        path.insert(path.end(), {static_cast<uint32_t>(p.x), static_cast<uint32_t>(p.y)});

    constexpr int kWidth = 50;
    std::vector<Pixel> pixels(kWidth * 40, 0xFF000000);
    MMContext2D context;
    context.target = {kWidth, 40, kWidth * 4, 0, pixels.data(), 0};
    context.clipRight = kWidth;
    context.clipBottom = 40;
    context.antiAlias = 1;
    context.transform.translate(-kFixedHalf, -kFixedHalf);
    context.fillPaint.paintColour = 0xFFFFFFFF;
    context.drawPath(path.data());

    // Covered parts of row 10: 0.4 in columns 5 and 44, 0.6 between them, all of the upright.
    const int row = 10 * kWidth;
    for (int x = 0; x < kWidth; ++x) {
        const double area = x < 5 || x > 44     ? 0
                            : x == 5 || x == 44 ? 0.4
                            : x >= 20 && x < 30 ? 1
                                                : 0.6;
        EXPECT_NEAR(static_cast<double>(pixels[static_cast<size_t>(row + x)] & 0xFF), area * 255, 1)
            << "column " << x;
    }
}

} // namespace
