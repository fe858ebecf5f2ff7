// SPDX-License-Identifier: MIT
// The entries of the rasterisers: classification of polygons.
//
// A polygon whose outline changes its vertical direction exactly twice meets every horizontal line
// at most twice and takes the quick two-chain walk of RasterMonotone.cpp, unless it is a rectangle.
// All others go through the active edges of RasterComplex.cpp.
#include "graphics2d/raster/Rasteriser.h"

#include "graphics2d/OutOfMemory.h"
#include "graphics2d/raster/PolygonBounds.h"
#include "graphics2d/raster/RasterComplex.h"
#include "graphics2d/raster/RasterMonotone.h"
#include "graphics2d/raster/RasterRectangle.h"
#include "graphics2d/raster/ThinPolygon.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// Changes of vertical direction along the closed outline; horizontal edges keep the direction of
// the edge before them. 0 when the whole outline lies on one horizontal line. Counting stops above
// 2, for nobody asks further.
uint32_t countDirectionChanges(const MMPoint2D* points, uint32_t count)
{
    uint32_t first = 1;
    while (first < count && points[first].y == points[first - 1].y)
        ++first;
    if (first == count) return 0;

    const bool firstRises = points[first].y < points[first - 1].y;
    bool rises = firstRises;
    uint32_t changes = 0;
    Fixed y = points[first].y;
    for (uint32_t i = first + 1; i < count; ++i) {
        const Fixed next = points[i].y;
        if (next == y) continue;
        if ((next < y) != rises) {
            rises = !rises;
            if (++changes > 2) return changes;
        }
        y = next;
    }
    if (points[0].y != y && (points[0].y < y) != rises) {
        rises = !rises;
        ++changes;
    }
    return changes + (rises != firstRises ? 1 : 0);
}

bool hasThreeVertices(const MMPoint2D* begin, const MMPoint2D* end)
{
    const MMPoint2D* second = begin; // until there is one that differs from the first
    for (const MMPoint2D* point = begin; point != end; ++point) {
        if (*point == *begin || *point == *second) continue;
        if (second != begin) return true;
        second = point;
    }
    return false;
}

// The contours that can hold anything, as far as they have to be counted.
struct UsefulContours {
    uint32_t count = 0; // 2 for more
    uint32_t last = 0;  // one of them
};

UsefulContours findUseful(const Contours& contours)
{
    UsefulContours useful;
    for (uint32_t i = 0; i < contours.count && useful.count < 2; ++i)
        if (hasThreeVertices(contours.begin(i), contours.end(i))) useful = {useful.count + 1, i};
    return useful;
}

// Draws a polygon with the given bounds that every horizontal line meets at most twice.
void drawSimple(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                const BoundsUnion& bounds, bool cutLongEdges, ThinShapes thinShapes,
                bool isRectangle)
{
    const PixelBox visible = reachableBox(context, bounds);
    if (visible.empty()) return;
    if (thinShapes == ThinShapes::kOneSpan && isThinPolygon(context, bounds))
        return drawThinPolygon(context, bounds, visible);
    const bool isDrawn =
        isRectangle && !cutLongEdges
            ? drawRectangle(context, visible, points[0], points[2])
            : drawMonotone(context, visible, bounds.maxY, cutLongEdges, points, count);
    if (!isDrawn) noteOutOfMemory(context);
}

BoundsUnion fillOne(MMContext2D& context, const MMPoint2D* points, uint32_t count, MMFillRule rule,
                    ThinShapes thinShapes, const BoundsUnion& leftOut)
{
    if (count < 3) return leftOut;
    const uint32_t changes = countDirectionChanges(points, count);
    if (changes == 0) return leftOut;
    BoundsUnion bounds = boundsOfPolygon(points, count);
    bounds.add(leftOut);
    if (changes == 2)
        drawSimple(context, points, count, bounds, spansTooFar(bounds), thinShapes,
                   isPlainRectangle(points, count));
    else
        drawContours(context, {points, &count, 1}, bounds, rule);
    return bounds;
}

} // namespace

BoundsUnion fillPolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                        MMFillRule rule)
{
    return fillOne(context, points, count, rule, ThinShapes::kOneSpan, {});
}

BoundsUnion fillOutline(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                        const BoundsUnion& leftOut)
{
    return fillOne(context, points, count, kFillNonZero, ThinShapes::kExact, leftOut);
}

BoundsUnion fillContours(MMContext2D& context, const Contours& contours, MMFillRule rule,
                         ThinShapes thinShapes, const BoundsUnion& leftOut)
{
    const uint32_t total = contours.pointCount();
    if (total == 0 || (total < 3 && leftOut.empty())) return {};
    BoundsUnion bounds = boundsOfPolygon(contours.points, total);
    bounds.add(leftOut);
    if (bounds.minY == bounds.maxY) return {};
    const bool isRectangle = contours.count == 1 && isPlainRectangle(contours.points, total);
    const UsefulContours useful = isRectangle ? UsefulContours{1, 0} : findUseful(contours);
    if (useful.count == 1) {
        const MMPoint2D* points = contours.begin(useful.last);
        const uint32_t count = static_cast<uint32_t>(contours.end(useful.last) - points);
        if (isRectangle || countDirectionChanges(points, count) == 2) {
            drawSimple(context, points, count,
                       contours.count == 1 ? bounds : boundsOfPolygon(points, count),
                       spansTooFar(bounds), thinShapes, isRectangle);
            return bounds;
        }
    }
    if (useful.count != 0) drawContours(context, contours, bounds, rule);
    return bounds;
}

// Kept out of the public operations below, which would hold it twice.
[[gnu::noinline]] BoundsUnion fillMonotonePolygon(MMContext2D& context, const MMPoint2D* points,
                                                  uint32_t count)
{
    if (count < 3) return {};
    const BoundsUnion bounds = boundsOfPolygon(points, count);
    drawSimple(context, points, count, bounds, spansTooFar(bounds), ThinShapes::kOneSpan,
               isPlainRectangle(points, count));
    return bounds;
}

// Likewise.
[[gnu::noinline]] BoundsUnion fillComplexPolygon(MMContext2D& context, const MMPoint2D* points,
                                                 uint32_t count, MMFillRule rule)
{
    if (count < 3) return {};
    const BoundsUnion bounds = boundsOfPolygon(points, count);
    drawContours(context, {points, &count, 1}, bounds, rule);
    return bounds;
}

void MMContext2D::rasterPolygon(MMPoint2D* points, uint16_t count)
{
    if (points == nullptr) return;
    fillPolygon(*this, points, count, static_cast<MMFillRule>(fillRule)).storeUnlessEmpty(*this);
}

void MMContext2D::rasterMonotonePolygon(MMPoint2D* points, uint16_t count)
{
    if (points == nullptr) return;
    fillMonotonePolygon(*this, points, count).storeUnlessEmpty(*this);
}

void MMContext2D::rasterComplexPolygon(MMPoint2D* points, uint16_t count)
{
    if (points == nullptr) return;
    fillComplexPolygon(*this, points, count, static_cast<MMFillRule>(fillRule))
        .storeUnlessEmpty(*this);
}

} // namespace Graphics2D
} // namespace KAVO
