// SPDX-License-Identifier: MIT
// On which sides of all that can be seen a point lies. Internal.
//
// What lies wholly above, below or right of the clip rectangle never shows, and what lies left of
// it shows only in the winding that it adds to its rows. So a run of points on one such side may be
// replaced by its two ends.
#pragma once

#include "graphics2d/PixelBox.h"
#include "math/MMPoint2D.h"
#include "math/WideMath.h"

namespace KAVO {
namespace Graphics2D {

class ClipWindow {
public:
    using Sides = uint32_t; // a bit for each side

    // What the context draws in, and a margin around it that rounding stays below.
    explicit ClipWindow(const MMContext2D& context)
    {
        PixelBox box = drawableBox(context);
        if (context.drawSuppressed != 0) box = {0, 0, 0, 0};
        left_ = box.left - kMargin;
        top_ = box.top - kMargin;
        right_ = box.right + kMargin;
        bottom_ = box.bottom + kMargin;
    }

    Sides sidesOf(const MMPoint2D& p) const { return sidesOf(p.x, p.y, p.x, p.y); }

    // The sides on which the whole rectangle lies, 16.16.
    Sides sidesOf(int64_t minX, int64_t minY, int64_t maxX, int64_t maxY) const
    {
        return (maxX >> 16 < left_ ? 1u : 0u) | (maxY >> 16 < top_ ? 2u : 0u) |
               (minX >> 16 >= right_ ? 4u : 0u) | (minY >> 16 >= bottom_ ? 8u : 0u);
    }

    // True when the whole rectangle can be seen.
    bool contains(Fixed minX, Fixed minY, Fixed maxX, Fixed maxY) const
    {
        return (minX >> 16) >= left_ && (minY >> 16) >= top_ && (maxX >> 16) < right_ &&
               (maxY >> 16) < bottom_;
    }

private:
    static constexpr int32_t kMargin = 2; // pixels

    int32_t left_;
    int32_t top_;
    int32_t right_;
    int32_t bottom_;
};

} // namespace Graphics2D
} // namespace KAVO
