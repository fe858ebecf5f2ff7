// SPDX-License-Identifier: MIT
// Coverage along one edge that crosses a whole row. Internal.
#pragma once

#include "graphics2d/raster/RowPainter.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

// The share of each column that lies right of an edge from top to bottom of a row: nothing left of
// firstColumn, everything from endColumn on, and between them a parabola in the first and the last
// column and a straight ramp in the columns between.
class EdgeRamp {
public:
    // coverageSlope is 1 / |bottomX - topX| in 16.16, as far as that fits.
    EdgeRamp(Fixed topX, Fixed bottomX, Fixed coverageSlope)
        : low_(std::min(topX, bottomX)), high_(std::max(topX, bottomX)),
          coverageSlope_(static_cast<uint32_t>(coverageSlope)), first_(fixFloor(low_)),
          end_(high_ > 0x7FFF0000 ? 0x8000 : fixFloor(high_ + 0xFFFF))
    {
    }

    int32_t firstColumn() const { return first_; }
    int32_t endColumn() const { return end_; }
    int32_t columns() const { return end_ - first_; }

    Area firstArea() const
    {
        if (columns() == 1)
            return kWholeArea - static_cast<Area>((inset(low_, first_) + inset(high_, first_)) / 2);
        return static_cast<Area>(static_cast<uint64_t>(firstHeight()) * firstWidth() >> 17);
    }

    // Of the second of three columns or more.
    Area secondArea() const
    {
        return static_cast<Area>(firstHeight()) + static_cast<Area>(step() >> 9);
    }

    // Gain of each further column up to the last one, 8.24: more than an area's 16 bits, which
    // would not do at the far end of a ramp of a thousand columns.
    int32_t step() const
    {
        if (columns() <= kShortRamp) return static_cast<int32_t>(coverageSlope_ << 8);
        return static_cast<int32_t>((uint64_t{1} << 40) / travel());
    }

    // Of the last of two columns or more.
    Area lastArea() const
    {
        const uint32_t width = inset(high_, end_ - 1);
        const uint32_t height = columns() == 2 ? kWholeArea - firstHeight() : slopeTimes(width);
        return kWholeArea - static_cast<Area>(static_cast<uint64_t>(height) * width >> 17);
    }

    [[gnu::noinline]] Area areaOf(int32_t column) const
    {
        if (column < first_) return 0;
        if (column >= end_) return kWholeArea;
        if (column == first_) return firstArea();
        if (column == end_ - 1) return lastArea();
        const int64_t gain = static_cast<int64_t>(step()) * (column - first_ - 1);
        return secondArea() + static_cast<Area>(gain >> 8);
    }

private:
    // Up to here the error of a 16.16 slope stays far below half a weight.
    static constexpr int32_t kShortRamp = 16;

    uint32_t travel() const { return static_cast<uint32_t>(high_) - static_cast<uint32_t>(low_); }
    uint32_t firstWidth() const { return 0x10000u - fixFraction(low_); }
    uint32_t firstHeight() const { return slopeTimes(firstWidth()); }

    // How far x lies inside the column, 0 to 0x10000.
    static uint32_t inset(Fixed x, int32_t column)
    {
        return static_cast<uint32_t>(x) - static_cast<uint32_t>(fixFromInt(column));
    }

    // Height the edge gains over a width.
    uint32_t slopeTimes(uint32_t width) const
    {
        const uint64_t height = static_cast<uint64_t>(coverageSlope_) * width >> 16;
        return static_cast<uint32_t>(std::min<uint64_t>(height, kWholeArea));
    }

    Fixed low_;
    Fixed high_;
    uint32_t coverageSlope_;
    int32_t first_;
    int32_t end_;
};

} // namespace Graphics2D
} // namespace KAVO
