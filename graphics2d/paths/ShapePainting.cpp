// SPDX-License-Identifier: MIT
// Filling and stroking of one outline of points in user space.
#include "graphics2d/paths/ShapePainting.h"

#include "graphics2d/raster/Rasteriser.h"
#include "graphics2d/strokes/DashArray.h"
#include "math/Points.h"
#include "memory/ScratchArray.h"

namespace KAVO {
namespace Graphics2D {

bool fillShape(MMContext2D& context, const MMPoint2D* points, uint32_t count, MMFillRule rule,
               BoundsUnion& bounds)
{
    context.currentPaint = context.fillPaint;
    ScratchArray<MMPoint2D> polygon(context.scratchStack, count);
    if (!polygon) return false;
    transformPoints(context.transform, polygon.data(), points, count);
    bounds = fillPolygon(context, polygon.data(), count, rule);
    return true;
}

BoundsUnion strokeShape(MMContext2D& context, MMPoint2D* points, uint32_t count, bool closed,
                        uint8_t joinStyle)
{
    context.currentPaint = context.strokePaint;
    const MMLinkPath record = {points, count};
    return strokeOrDashSubpath(context, DevicePen(context, joinStyle), {&record, 1, closed});
}

} // namespace Graphics2D
} // namespace KAVO
