// SPDX-License-Identifier: MIT
// How the pixels lie under the coordinates of a polygon. Internal.
//
// The rasterisers move all vertices so that the whole part of a coordinate names a pixel: without
// anti-aliasing the one whose centre comes next, with it the one that holds the coordinate. By the
// classic rules both move by half a pixel, so that an anti-aliased pixel c covers
// [c - 1/2, c + 1/2); by the refined ones anti-aliasing moves nothing, and pixel c covers
// [c, c + 1).
#pragma once

#include "graphics2d/MMContext2D.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

class PixelGrid {
public:
    explicit PixelGrid(const MMContext2D& context)
        : shift_(context.refined != 0 && (context.antiAlias & 1) != 0 ? 0 : kFixedHalf)
    {
    }

    bool shifts() const { return shift_ != 0; }

    // Stops at the ends of a range that lies beyond every clip rectangle. It is half a pixel short
    // of all, so that halves of what it holds fit 31 bits.
    Fixed moved(Fixed v) const
    {
        constexpr Fixed kLeast = -0x7FFFFFFF - 1 + kFixedHalf;
        return v > 0x7FFFFFFF - shift_ ? 0x7FFFFFFF : std::max(v, kLeast - shift_) + shift_;
    }
    [[gnu::always_inline]] MMPoint2D moved(const MMPoint2D& p) const
    {
        return {moved(p.x), moved(p.y)};
    }

private:
    Fixed shift_;
};

} // namespace Graphics2D
} // namespace KAVO
