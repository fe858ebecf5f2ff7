// SPDX-License-Identifier: MIT
// Classification of polygons.
//
// A polygon whose outline changes its vertical direction exactly twice meets every horizontal line
// at most twice and takes the quick two-chain walk of RasterMonotone.cpp. All others go through the
// active edges of RasterComplex.cpp.
#include "graphics2d/raster/Rasteriser.h"

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

} // namespace

BoundsUnion fillPolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                        MMFillRule rule)
{
    if (count < 3) return {};
    const uint32_t changes = countDirectionChanges(points, count);
    if (changes == 0) return {};
    if (changes == 2) return fillMonotonePolygon(context, points, count, ThinShapes::kOneSpan);
    return fillComplexPolygon(context, points, count, rule);
}

BoundsUnion fillOutline(MMContext2D& context, const MMPoint2D* points, uint32_t count)
{
    if (count < 3) return {};
    const uint32_t changes = countDirectionChanges(points, count);
    if (changes == 0) return {};
    if (changes == 2) return fillMonotonePolygon(context, points, count, ThinShapes::kExact);
    return fillComplexPolygon(context, points, count, kFillNonZero);
}

void MMContext2D::rasterPolygon(MMPoint2D* points, uint16_t count)
{
    if (points == nullptr) return;
    fillPolygon(*this, points, count, static_cast<MMFillRule>(fillRule)).storeUnlessEmpty(*this);
}

void MMContext2D::rasterMonotonePolygon(MMPoint2D* points, uint16_t count)
{
    if (points == nullptr) return;
    fillMonotonePolygon(*this, points, count, ThinShapes::kOneSpan).storeUnlessEmpty(*this);
}

void MMContext2D::rasterComplexPolygon(MMPoint2D* points, uint16_t count)
{
    if (points == nullptr) return;
    fillComplexPolygon(*this, points, count, static_cast<MMFillRule>(fillRule))
        .storeUnlessEmpty(*this);
}

} // namespace Graphics2D
} // namespace KAVO
