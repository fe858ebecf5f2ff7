// SPDX-License-Identifier: MIT
// Rectangles with elliptical corners, and ellipses.
//
// The outline is built in user space from eight cubic curves of 45 degrees, two for each corner,
// and then filled and stroked like any other.
#include "graphics2d/BoundsUnion.h"
#include "graphics2d/OutOfMemory.h"
#include "graphics2d/paths/BezierFlattening.h"
#include "graphics2d/paths/ShapePainting.h"
#include "math/FixedMath.h"
#include "memory/ScratchArray.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kHalfPoints = 16; // of the corners at positive y
constexpr uint32_t kAllPoints = 2 * kHalfPoints;

// Half the unit circle as four curves (start, two controls, end). It is not quite symmetric: the
// last x lies 4 units nearer than the first. Evening it out would move pixels of every ellipse.
constexpr MMPoint2D kUnitArcs[kHalfPoints] = {
    {0xFFFA, 0},       {0x10049, 0x4320},  {0xE4AE, 0x85C2},   {0xB500, 0xB500},
    {0xB500, 0xB500},  {0x85C2, 0xE4AE},   {0x4320, 0x10049},  {0, 0xFFFA},
    {0, 0xFFFA},       {-0x4320, 0x10049}, {-0x85C2, 0xE4AE},  {-0xB500, 0xB500},
    {-0xB500, 0xB500}, {-0xE4AE, 0x85C2},  {-0x10049, 0x4320}, {-0xFFF6, 0},
};

// The same by the refined rules: symmetric, and within 1/2000 of the radius of the circle.
constexpr MMPoint2D kRefinedArcs[kHalfPoints] = {
    {0x10000, 0},      {0x10000, 0x43E5},  {0xE507, 0x8503},   {0xB505, 0xB505},
    {0xB505, 0xB505},  {0x8503, 0xE507},   {0x43E5, 0x10000},  {0, 0x10000},
    {0, 0x10000},      {-0x43E5, 0x10000}, {-0x8503, 0xE507},  {-0xB505, 0xB505},
    {-0xB505, 0xB505}, {-0xE507, 0x8503},  {-0x10000, 0x43E5}, {-0x10000, 0},
};

// Room for the outline in points: what nearly all need, and eight of the longest curves with four
// straight edges.
constexpr uint32_t kUsualOutline = 1024;
constexpr uint32_t kMaxOutline = 8 * kMaxCurvePoints + 4;

// The four corners in user space, eight curve points each, in the direction of growing angle.
struct Corners {
    MMPoint2D points[kAllPoints];
    Fixed ex; // half lengths of the straight edges; negative where the radii are too large
    Fixed ey;

    Corners(const MMPoint2D* unitArcs, Fixed cx, Fixed cy, Fixed halfWidth, Fixed halfHeight,
            Fixed rx, Fixed ry)
        : ex(wrapSub(halfWidth, rx)), ey(wrapSub(halfHeight, ry))
    {
        for (uint32_t i = 0; i < kHalfPoints; ++i) {
            const Fixed cornerX = i < kHalfPoints / 2 ? wrapAdd(cx, ex) : wrapSub(cx, ex);
            const Fixed x = wrapAdd(fixMul(unitArcs[i].x, rx), cornerX);
            const Fixed y = wrapAdd(fixMul(unitArcs[i].y, ry), wrapAdd(cy, ey));
            points[i] = {x, y};
            // The other half is reflected through the centre.
            points[kHalfPoints + i] = {wrapSub(wrapAdd(cx, cx), x), wrapSub(wrapAdd(cy, cy), y)};
        }
    }

    // Writes the outline. Returns its number of points, or 0 when they are more than room.
    uint32_t writeOutline(const CurveRule& rule, MMPoint2D* out, uint32_t room) const
    {
        // A straight edge leads to the start of each corner. With too large a radius all are
        // written but the first, which the closing of the outline draws by itself.
        const bool edgeBefore[] = {ey > 0, ex != 0, ey != 0, ex != 0};
        const MMPoint2D* curve = points;
        uint32_t count = 0;
        for (const bool writeStart : edgeBefore) {
            if (writeStart) {
                if (count == room) return 0;
                out[count++] = curve[0];
            }
            for (const MMPoint2D* end = curve + 8; curve != end; curve += 4) {
                const uint32_t added = flattenBezier(rule, {curve[0], curve[1], curve[2], curve[3]},
                                                     out + count, room - count);
                if (added > room - count) return 0;
                count += added;
            }
        }
        return count;
    }
};

// False when the outline has more points than room.
bool drawCorners(MMContext2D& context, const Corners& corners, uint32_t room)
{
    ScratchArray<MMPoint2D> outline(context.scratchStack, room);
    if (!outline) {
        noteOutOfMemory(context);
        return true;
    }
    const uint32_t count = corners.writeOutline(curveRuleOf(context), outline.data(), room);
    if (count == 0) return false;
    outline.resize(count); // shrinks in place

    if (context.fillPaint.paintType != kPaintNone) {
        BoundsUnion bounds;
        // A fill without memory ends the drawing. outOfMemory here stands for the outline alone.
        if (!fillShape(context, outline.data(), count, static_cast<MMFillRule>(context.fillRule),
                       bounds))
            return true;
        bounds.storeUnlessEmpty(context);
    }
    if (context.strokePaint.paintType != kPaintNone && context.strokeHalfWidth != 0) {
        BoundsUnion bounds = strokeShape(context, outline.data(), count, true, kJoinRound);
        // Dashes alone leave a visible fill in the bounds.
        if (context.dashArray != nullptr && context.fillPaint.paintType != kPaintNone)
            bounds.addBoundsOf(context);
        bounds.storeTo(context);
    }
    return true;
}

} // namespace

void MMContext2D::drawEllipticalRect(Fixed cx, Fixed cy, Fixed halfWidth, Fixed halfHeight,
                                     Fixed rx, Fixed ry)
{
    pointStep = 1;
    const Corners corners(refined != 0 ? kRefinedArcs : kUnitArcs, cx, cy, halfWidth, halfHeight,
                          rx, ry);
    if (!drawCorners(*this, corners, kUsualOutline)) drawCorners(*this, corners, kMaxOutline);
}

} // namespace Graphics2D
} // namespace KAVO
