// SPDX-License-Identifier: MIT
#include "graphics2d/raster/ThinPolygon.h"

#include "graphics2d/raster/PixelGrid.h"
#include "graphics2d/raster/RowPainter.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// Opacity times a height of at most one row. Results of 128 and more count one more, as weights do.
uint8_t scaledOpacity(uint8_t opacity, Fixed height)
{
    const int32_t scaled = (opacity * (height >> 8)) >> 8;
    return static_cast<uint8_t>(scaled < 255 && (scaled & 0x80) != 0 ? scaled + 1 : scaled);
}

} // namespace

bool isThinPolygon(const MMContext2D& context, const BoundsUnion& bounds)
{
    if ((context.antiAlias & 1) == 0 || context.refined != 0) return false;
    const PixelGrid grid(context);
    return fixFloor(grid.moved(bounds.minY)) == fixFloor(grid.moved(bounds.maxY) - 1);
}

void drawThinPolygon(MMContext2D& context, const BoundsUnion& bounds, const PixelBox& visible)
{
    const PixelGrid grid(context);
    const int32_t row = fixFloor(grid.moved(bounds.minY));
    if (row < visible.top || row >= visible.bottom) return;
    uint8_t& opacity = context.currentPaint.paintOpacity;
    const uint8_t whole = opacity;
    opacity = scaledOpacity(whole, bounds.maxY - bounds.minY);
    RowPainter painter(context, visible);
    painter.beginRow(row);
    painter.drawSharp(grid.moved(bounds.minX), grid.moved(bounds.maxX));
    opacity = whole;
}

} // namespace Graphics2D
} // namespace KAVO
