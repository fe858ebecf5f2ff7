// SPDX-License-Identifier: MIT
// Uniting the bounds of several pieces. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

// Smallest rectangle around all that was added; starts empty.
struct BoundsUnion {
    Fixed minX = kEmptyBoundsMin;
    Fixed minY = kEmptyBoundsMin;
    Fixed maxX = kEmptyBoundsMax;
    Fixed maxY = kEmptyBoundsMax;

    void addPoint(const MMPoint2D& p)
    {
        minX = std::min(minX, p.x);
        minY = std::min(minY, p.y);
        maxX = std::max(maxX, p.x);
        maxY = std::max(maxY, p.y);
    }

    void addBox(Fixed left, Fixed top, Fixed right, Fixed bottom)
    {
        addPoint({left, top});
        addPoint({right, bottom});
    }

    void add(const BoundsUnion& other);

    // Adds what the last operation left in the bounds fields.
    void addBoundsOf(const MMContext2D& context);

    bool empty() const { return minX > maxX; }

    // Only public operations store; inside, bounds are returned.
    void storeTo(MMContext2D& context) const;
    void storeUnlessEmpty(MMContext2D& context) const
    {
        if (!empty()) storeTo(context);
    }
};

} // namespace Graphics2D
} // namespace KAVO
