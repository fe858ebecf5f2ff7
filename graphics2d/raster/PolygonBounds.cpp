// SPDX-License-Identifier: MIT
#include "graphics2d/raster/PolygonBounds.h"

#include "graphics2d/masks/MaskedStrip.h"
#include "graphics2d/raster/PixelGrid.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

BoundsUnion boundsOfPolygon(const MMPoint2D* points, uint32_t count)
{
    BoundsUnion bounds;
    for (uint32_t i = 0; i < count; ++i)
        bounds.addPoint(points[i]);
    return bounds;
}

PixelBox reachableBox(const MMContext2D& context, const BoundsUnion& bounds)
{
    if (context.drawSuppressed) return {0, 0, 0, 0};
    const PixelBox drawable = drawableBox(context);
    const PixelGrid grid(context);
    PixelBox box = {std::max(drawable.left, fixFloor(grid.moved(bounds.minX))),
                    std::max(drawable.top, fixFloor(grid.moved(bounds.minY))),
                    std::min(drawable.right, fixFloor(grid.moved(bounds.maxX)) + 1),
                    std::min(drawable.bottom, fixFloor(grid.moved(bounds.maxY)) + 1)};
    if constexpr (kHasLayers)
        if (context.clipMask != nullptr) box.bottom -= hiddenRows(context, box, BoxSide::kBottom);
    return box;
}

} // namespace Graphics2D
} // namespace KAVO
