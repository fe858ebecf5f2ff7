// SPDX-License-Identifier: MIT
// Stroking of lines.
//
// The outline is built in user space and mapped as a whole, so that the pen takes part in scaling,
// skewing and mirroring. Without anti-aliasing a pen that can be thinner than a device pixel would
// leave gaps: its stroke is united with that of a pen one pixel wide in device space, or replaced
// by it when it is thinner everywhere.
#include "graphics2d/strokes/Stroker.h"

#include "graphics2d/BoundsUnion.h"
#include "graphics2d/raster/Rasteriser.h"
#include "graphics2d/strokes/StrokeOutline.h"
#include "math/LinearPart.h"
#include "math/Points.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// How far round joins and caps may stray from circles, in device pixels. Even 1/8 would show in
// every cap.
constexpr Fixed kSagitta = kFixedOne / 256;
constexpr Fixed kWidePenSagitta = kFixedOne / 64;
constexpr int64_t kWidePen = 64 * kFixedOne; // half width

// The round joins and caps of one subpath, dashed or not, make no more than about this many points
// in all: from some 4,700 vertices or dashes on, the widest pens get coarser.
constexpr uint64_t kMaxRoundPoints = 1 << 23;

// A line whose outline no scratch stack could hold.
constexpr uint64_t kTooManyPoints = 1 << 28;

// v scaled by a stretch factor.
int64_t stretched(Fixed v, int64_t factor)
{
    return (v * (factor >> 1)) >> 15;
}

Degrees stepOf(int64_t deviceHalfWidth)
{
    return stepWithin(deviceHalfWidth <= kWidePen ? kSagitta : kWidePenSagitta, deviceHalfWidth);
}

void transformSaturated(const Matrix2D& m, MMPoint2D* points, uint32_t count)
{
    for (MMPoint2D* p = points; p != points + count; ++p)
        *p = mappedSaturated(m, *p);
}

// Drops every point that equals the one before it, and at the end of a closed line those that equal
// the first. Returns how many are left.
uint32_t dropRepeated(MMPoint2D* points, uint32_t count, bool closed)
{
    uint32_t kept = 1;
    for (uint32_t i = 1; i < count; ++i) {
        if (points[i] != points[kept - 1]) points[kept++] = points[i];
    }
    while (closed && kept > 1 && points[kept - 1] == points[0])
        --kept;
    return kept;
}

// One line to be stroked, in scratch memory.
class Stroke {
public:
    Stroke(MMContext2D& context, const DevicePen& pen, MMPoint2D* points, uint32_t count,
           bool closed)
        : context_(context), devicePen_(pen), points_(points), count_(count), closed_(closed)
    {
    }

    // False when the scratch stack is exhausted.
    bool draw()
    {
        if ((context_.antiAlias & 1) != 0 || devicePen_.smallest >= kFixedHalf) return drawPen();
        return devicePen_.greatest > kFixedHalf ? drawPenAndHairline() : drawHairline();
    }

private:
    StrokePen pen() const
    {
        return {context_.strokeHalfWidth, context_.miterLimit,        devicePen_.joinStyle,
                context_.capStyle,        devicePen_.stepFor(count_), devicePen_.direction};
    }

    // One device pixel wide. A disc could miss the pixels' centres; a square along the axes lights
    // one pixel wherever it lies.
    StrokePen hairline() const
    {
        const MMCapStyle cap = context_.capStyle == kCapButt ? kCapButt : kCapSquare;
        return {kFixedHalf, context_.miterLimit, devicePen_.joinStyle,
                cap,        stepOf(kFixedHalf),  {kOne30, 0}};
    }

    bool buildWithPen(StrokeOutline& outline)
    {
        count_ = dropRepeated(points_, count_, closed_);
        if (!outline.build(points_, count_, closed_)) return false;
        transformSaturated(context_.transform, outline.points(), outline.count());
        return true;
    }

    // The points are in device space afterwards.
    bool buildWithHairline(StrokeOutline& outline)
    {
        transformSaturated(context_.transform, points_, count_);
        count_ = dropRepeated(points_, count_, closed_);
        return outline.build(points_, count_, closed_);
    }

    void fill(const MMPoint2D* polygon, uint32_t count)
    {
        fillPolygon(context_, polygon, count, kFillNonZero).storeUnlessEmpty(context_);
    }

    bool drawPen()
    {
        StrokeOutline outline(context_.scratchStack, pen(), count_);
        if (!buildWithPen(outline)) return false;
        fill(outline.points(), outline.count());
        return true;
    }

    bool drawHairline()
    {
        StrokeOutline outline(context_.scratchStack, hairline(), count_);
        if (!buildWithHairline(outline)) return false;
        fill(outline.points(), outline.count());
        return true;
    }

    bool drawPenAndHairline()
    {
        StrokeOutline wide(context_.scratchStack, pen(), count_);
        if (!buildWithPen(wide)) return false;
        StrokeOutline thin(context_.scratchStack, hairline(), count_);
        if (!buildWithHairline(thin)) return false;
        if (thin.count() == 0) { // a line so short that it is a dot with butt caps
            fill(wide.points(), wide.count());
            return true;
        }
        if (isMirroring(linearPartOf(context_.transform)))
            std::reverse(thin.points(), thin.points() + thin.count());

        const uint32_t count = wide.count() + thin.count() + 2;
        ScratchArray<MMPoint2D> both(context_.scratchStack, count);
        if (!both) return false;
        MMPoint2D* end = std::copy(wide.points(), wide.points() + wide.count(), both.data());
        *end++ = wide.points()[0];
        end = std::copy(thin.points(), thin.points() + thin.count(), end);
        *end++ = thin.points()[0];
        fill(both.data(), count);
        return true;
    }

    MMContext2D& context_;
    const DevicePen& devicePen_;
    MMPoint2D* points_;
    uint32_t count_;
    bool closed_;
};

} // namespace

DevicePen::DevicePen(const MMContext2D& context, uint8_t joins) : joinStyle(joins)
{
    const Stretch stretch = stretchOf(linearPartOf(context.transform));
    greatest = stretched(context.strokeHalfWidth, stretch.greatest);
    smallest = stretched(context.strokeHalfWidth, stretch.smallest);
    step = stepOf(greatest);
}

Degrees DevicePen::stepFor(uint64_t count) const
{
    const uint64_t least = uint64_t{kDegrees180} * count / kMaxRoundPoints;
    return static_cast<Degrees>(
        std::clamp<uint64_t>(least, static_cast<uint32_t>(step), kDegrees90 / 2));
}

uint32_t readableRecords(const MMLinkPath* records, int32_t count)
{
    if (records == nullptr) return 0;
    for (int32_t i = 0; i < count; ++i)
        if (records[i].points == nullptr && records[i].count != 0) return 0;
    return count > 0 ? static_cast<uint32_t>(count) : 0;
}

void strokeSubpath(MMContext2D& context, const DevicePen& pen, const MMLinkPath* records,
                   uint32_t recordCount, bool closed)
{
    BoundsUnion().storeTo(context);
    if (context.strokeHalfWidth <= 0) return;
    uint64_t total = 0;
    for (uint32_t i = 0; i < recordCount; ++i)
        total += records[i].count;
    if (total == 0) return;
    const uint32_t count = static_cast<uint32_t>(std::min(total, kTooManyPoints));
    ScratchArray<MMPoint2D> points(context.scratchStack,
                                   total < kTooManyPoints ? count : UINT32_MAX);
    if (!points) {
        context.outOfMemory |= kScratchExhausted;
        return;
    }
    MMPoint2D* end = points.data();
    for (uint32_t i = 0; i < recordCount; ++i)
        end = std::copy(records[i].points, records[i].points + records[i].count, end);
    if (!Stroke(context, pen, points.data(), count, closed).draw())
        context.outOfMemory |= kScratchExhausted;
}

void MMContext2D::drawPolyline(MMLinkPath* records, int16_t segmentCount, uint8_t closed)
{
    pointStep = 1;
    strokeSubpath(*this, DevicePen(*this), records, readableRecords(records, segmentCount),
                  closed != 0);
}

} // namespace Graphics2D
} // namespace KAVO
