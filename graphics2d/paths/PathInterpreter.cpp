// SPDX-License-Identifier: MIT
// Drawing of encoded paths.
//
// A path is filled as one polygon through all its subpaths: each in turn with its first point
// repeated at its end, then the first points again in reverse order. Every connecting edge is so
// walked once each way, and the pairs cancel. Strokes take the subpaths one by one.
#include "graphics2d/BoundsUnion.h"
#include "graphics2d/OutOfMemory.h"
#include "graphics2d/paths/PathDecoder.h"
#include "graphics2d/raster/Rasteriser.h"
#include "graphics2d/strokes/DashArray.h"
#include "math/Points.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

BoundsUnion boundsOf(DecodedPath& path)
{
    BoundsUnion bounds;
    for (uint32_t i = 0; i < path.totalSegments(); ++i) {
        const MMLinkPath& segment = path.segments()[i];
        for (uint32_t j = 0; j < segment.count; ++j)
            bounds.addPoint(segment.points[j]);
    }
    return bounds;
}

uint32_t countSubpathsWithPoints(const DecodedPath& path)
{
    uint32_t count = 0;
    for (uint32_t i = 0; i < path.subpathCount(); ++i)
        count += path.segmentCount(i) > 0 ? 1 : 0;
    return count;
}

// Writes the polygon of a path in device space: its points, and two more for each subpath that has
// any, count in all.
void writePolygon(const Matrix2D& transform, DecodedPath& path, MMPoint2D* polygon, uint32_t count)
{
    const MMLinkPath* segment = path.segments();
    MMPoint2D* front = polygon;
    MMPoint2D* back = polygon + count;
    for (uint32_t i = 0; i < path.subpathCount(); ++i) {
        const MMPoint2D* first = front;
        for (uint32_t k = path.segmentCount(i); k > 0; --k, ++segment) {
            transformPoints(transform, front, segment->points, segment->count);
            front += segment->count;
        }
        if (front == first) continue;
        *front++ = *first;
        *--back = *first;
    }
}

// False when the scratch stack is exhausted.
bool fillPath(MMContext2D& context, DecodedPath& path)
{
    const uint64_t total = path.totalPoints() + 2 * uint64_t{countSubpathsWithPoints(path)};
    const uint32_t count = static_cast<uint32_t>(std::min<uint64_t>(total, UINT32_MAX));
    ScratchArray<MMPoint2D> polygon(context.scratchStack, count);
    if (!polygon) return false;
    writePolygon(context.transform, path, polygon.data(), count);
    context.currentPaint = context.fillPaint;
    fillPolygon(context, polygon.data(), count, static_cast<MMFillRule>(context.fillRule))
        .storeUnlessEmpty(context);
    return true;
}

void strokePath(MMContext2D& context, DecodedPath& path, const uint32_t* words)
{
    context.currentPaint = context.strokePaint;
    const DevicePen pen(context);
    const MMLinkPath* segment = path.segments();
    const uint32_t* commands = words + 1;
    BoundsUnion last;
    BoundsUnion all;
    for (uint32_t i = 0; i < path.subpathCount(); ++i) {
        const uint32_t count = path.segmentCount(i);
        if (count != 0 && segment == path.segments()) commands = firstPoints(commands);
        last = {};
        if (count != 0)
            last = strokeOrDashSubpath(context, pen, {segment, count, path.isClosed(i), commands});
        all.add(last);
        segment += count;
        commands = nextSubpath(commands);
    }
    if (context.accumulateBounds != 0)
        all.storeTo(context);
    else if (path.subpathCount() > 0)
        last.storeTo(context);
}

} // namespace

void MMContext2D::drawPath(const uint32_t* path)
{
    if (path == nullptr) return;
    pointStep = 1;
    DecodedPath decoded(*this, path);
    if (!decoded) {
        noteOutOfMemory(*this);
        return;
    }
    if ((renderFlags & kRenderBoundsOnly) != 0) {
        boundsOf(decoded).storeTo(*this);
        return;
    }
    if (fillPaint.paintType != kPaintNone && decoded.totalPoints() >= 3 &&
        !fillPath(*this, decoded)) {
        noteOutOfMemory(*this);
        return;
    }
    if (strokePaint.paintType != kPaintNone) strokePath(*this, decoded, path);
}

} // namespace Graphics2D
} // namespace KAVO
