// SPDX-License-Identifier: MIT
// Drawing of encoded paths.
//
// A path is filled as one shape whose contours are the subpaths, each closed by itself. Strokes
// take the subpaths one by one.
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

// Writes the subpaths that have points as contours in device space. Returns how many they are.
uint32_t writeContours(const Matrix2D& transform, DecodedPath& path, MMPoint2D* points,
                       uint32_t* ends)
{
    const MMLinkPath* segment = path.segments();
    uint32_t written = 0;
    uint32_t count = 0;
    for (uint32_t i = 0; i < path.subpathCount(); ++i) {
        const uint32_t start = written;
        for (uint32_t k = path.segmentCount(i); k > 0; --k, ++segment) {
            transformPoints(transform, points + written, segment->points, segment->count);
            written += segment->count;
        }
        if (written != start) ends[count++] = written;
    }
    return count;
}

// False when the scratch stack is exhausted.
bool fillPath(MMContext2D& context, DecodedPath& path)
{
    const uint32_t total =
        static_cast<uint32_t>(std::min<uint64_t>(path.totalPoints(), UINT32_MAX));
    ScratchArray<MMPoint2D> points(context.scratchStack, total);
    ScratchArray<uint32_t> ends(context.scratchStack, path.subpathCount());
    if (!points || !ends) return false;
    const uint32_t count = writeContours(context.transform, path, points.data(), ends.data());
    context.currentPaint = context.fillPaint;
    fillContours(context, {points.data(), ends.data(), count},
                 static_cast<MMFillRule>(context.fillRule), ThinShapes::kOneSpan,
                 path.boundsOfCut())
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
    const bool strokes = strokePaint.paintType != kPaintNone;
    const bool boundsOnly = (renderFlags & kRenderBoundsOnly) != 0;
    DecodedPath decoded(*this, path, !strokes && !boundsOnly);
    if (!decoded) {
        noteOutOfMemory(*this);
        return;
    }
    if (boundsOnly) {
        boundsOf(decoded).storeTo(*this);
        return;
    }
    if (fillPaint.paintType != kPaintNone && decoded.totalPoints() + decoded.pointsLeftOut() >= 3 &&
        !fillPath(*this, decoded)) {
        noteOutOfMemory(*this);
        return;
    }
    if (strokes) strokePath(*this, decoded, path);
}

} // namespace Graphics2D
} // namespace KAVO
