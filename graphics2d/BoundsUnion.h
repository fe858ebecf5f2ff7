// SPDX-License-Identifier: MIT
// Uniting the bounds of several pieces. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

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
        if (p.x < minX) minX = p.x;
        if (p.y < minY) minY = p.y;
        if (p.x > maxX) maxX = p.x;
        if (p.y > maxY) maxY = p.y;
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
