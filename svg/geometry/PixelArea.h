// SPDX-License-Identifier: MIT
// Rectangles of whole pixels.
#pragma once

#include "svg/geometry/Affine.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

// Device pixels from the left and top on, without those on the right and bottom.
struct PixelArea {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int width() const { return std::max(0, right - left); }
    int height() const { return std::max(0, bottom - top); }
    bool empty() const { return left >= right || top >= bottom; }
    double pixels() const { return static_cast<double>(width()) * height(); }

    PixelArea moved(int dx, int dy) const { return {left + dx, top + dy, right + dx, bottom + dy}; }
    // By so many pixels on the left and right, and above and below; an empty one stays so.
    PixelArea widened(int x, int y) const
    {
        return empty() ? *this : PixelArea{left - x, top - y, right + x, bottom + y};
    }

    // What both have; empty when they do not meet.
    PixelArea common(const PixelArea& other) const
    {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }
    // The smallest area around both.
    PixelArea around(const PixelArea& other) const
    {
        if (empty()) return other;
        if (other.empty()) return *this;
        return {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                std::max(bottom, other.bottom)};
    }
};

// The pixels that a box touches by more than a hundredth, at most a hundred million from the
// origin.
inline PixelArea areaAround(const Box& box)
{
    const auto pixel = [](double v) { return static_cast<int>(std::clamp(v, -1e8, 1e8)); };
    return {pixel(std::floor(box.left + 0.01)), pixel(std::floor(box.top + 0.01)),
            pixel(std::ceil(box.right - 0.01)), pixel(std::ceil(box.bottom - 0.01))};
}

} // namespace Svg
} // namespace KAVO
