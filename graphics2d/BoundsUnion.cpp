// SPDX-License-Identifier: MIT
#include "graphics2d/BoundsUnion.h"

namespace KAVO {
namespace Graphics2D {

void BoundsUnion::addBoundsOf(const MMContext2D& context)
{
    if (context.boundsMinX < minX) minX = context.boundsMinX;
    if (context.boundsMinY < minY) minY = context.boundsMinY;
    if (context.boundsMaxX > maxX) maxX = context.boundsMaxX;
    if (context.boundsMaxY > maxY) maxY = context.boundsMaxY;
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
