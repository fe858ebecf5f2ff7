// SPDX-License-Identifier: MIT
#include "graphics2d/BoundsUnion.h"

namespace KAVO {
namespace Graphics2D {

void BoundsUnion::add(const BoundsUnion& other)
{
    minX = std::min(minX, other.minX);
    minY = std::min(minY, other.minY);
    maxX = std::max(maxX, other.maxX);
    maxY = std::max(maxY, other.maxY);
}

void BoundsUnion::addBoundsOf(const MMContext2D& context)
{
    add({context.boundsMinX, context.boundsMinY, context.boundsMaxX, context.boundsMaxY});
}

void BoundsUnion::storeTo(MMContext2D& context) const
{
    context.boundsMinX = minX;
    context.boundsMinY = minY;
    context.boundsMaxX = maxX;
    context.boundsMaxY = maxY;
}

} // namespace Graphics2D
} // namespace KAVO
