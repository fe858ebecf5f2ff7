// SPDX-License-Identifier: MIT
// Stroking of lines.
//
// The outline is built in user space and mapped point by point, so that the pen takes part in
// scaling, skewing and mirroring. Without anti-aliasing a pen that can be thinner than a device
// pixel would leave gaps: its stroke is united with that of a pen one pixel wide in device space,
// the hairline, or replaced by it when it is thinner everywhere. The hairline has bevels for joins,
// because the tips of its miters would be specks beside the line. A stroke of a wider pen that is
// so small that it holds no pixel's centre lights the pixel in which it starts.
#include "graphics2d/strokes/Stroker.h"

#include "graphics2d/OutOfMemory.h"
#include "graphics2d/raster/Rasteriser.h"
#include "graphics2d/strokes/GatheredOutlines.h"
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

const Subpath kNoCurves = {nullptr, 0, false};

// v scaled by a stretch factor.
int64_t stretched(Fixed v, int64_t factor)
{
    return (v * (factor >> 1)) >> 15;
}

// Dots smaller than a pixel lose too much of their ink when they have too few corners.
Degrees stepOf(int64_t deviceHalfWidth)
{
    return stepWithin(deviceHalfWidth <= kWidePen ? kSagitta : kWidePenSagitta,
                      std::max<int64_t>(deviceHalfWidth, kFixedOne));
}

// The winding number of a polygon around a point, which lies on the left of edges that it is on.
int32_t windingAt(const MMPoint2D* polygon, uint32_t count, const MMPoint2D& p)
{
    int32_t winding = 0;
    MMPoint2D from = polygon[count - 1];
    for (uint32_t i = 0; i < count; ++i) {
        const MMPoint2D to = polygon[i];
        if ((from.y < p.y) != (to.y < p.y)) {
            const int64_t cross = (int64_t{to.x} - from.x) * (int64_t{p.y} - from.y) -
                                  (int64_t{to.y} - from.y) * (int64_t{p.x} - from.x);
            const bool down = from.y < to.y;
            if (down ? cross <= 0 : cross >= 0) winding += down ? 1 : -1;
        }
        from = to;
    }
    return winding;
}

// Whether a polygon covers the centre of a pixel. Any polygon larger than two pixels counts as one
// that does.
bool holdsPixelCentre(const StrokeOutline& outline, const MMPoint2D* polygon)
{
    const BoundsUnion& bounds = outline.bounds();
    constexpr int64_t kSmall = 2 * kFixedOne;
    if (int64_t{bounds.maxX} - bounds.minX > kSmall || int64_t{bounds.maxY} - bounds.minY > kSmall)
        return true;
    for (int32_t row = fixFloor(bounds.minY); row <= fixFloor(bounds.maxY); ++row)
        for (int32_t column = fixFloor(bounds.minX); column <= fixFloor(bounds.maxX); ++column) {
            const MMPoint2D centre = {wrapAdd(fixFromInt(column), kFixedHalf),
                                      wrapAdd(fixFromInt(row), kFixedHalf)};
            if (windingAt(polygon, outline.count(), centre) != 0) return true;
        }
    return false;
}

// One line to be stroked, in scratch memory.
class Stroke {
public:
    Stroke(MMContext2D& context, const DevicePen& pen, const Subpath& subpath, MMPoint2D* points,
           uint32_t count)
        : context_(context), window_(context), devicePen_(pen), subpath_(subpath), points_(points),
          count_(count)
    {
    }

    // False when the scratch stack is exhausted.
    bool draw()
    {
        if ((context_.antiAlias & 1) != 0) return drawPen(false);
        if (devicePen_.smallest >= kFixedHalf) return drawPen(true);
        return devicePen_.greatest > kFixedHalf ? drawPenAndHairline() : drawHairline();
    }

    const BoundsUnion& bounds() const { return bounds_; }

private:
    StrokePen pen() const
    {
        return {context_.strokeHalfWidth,
                context_.miterLimit,
                devicePen_.joinStyle,
                devicePen_.capStyle,
                devicePen_.stepFor(count_),
                devicePen_.direction,
                false,
                context_.refined != 0};
    }

    // One device pixel wide. A disc could miss the pixels' centres; a square along the axes lights
    // one pixel wherever it lies.
    StrokePen hairline() const
    {
        const MMCapStyle cap = devicePen_.capStyle == kCapButt ? kCapButt : kCapSquare;
        return {kFixedHalf,  0,   kJoinBevel, cap, stepWithin(kSagitta, kFixedHalf),
                {kOne30, 0}, true};
    }

    bool buildWithPen(StrokeOutline& outline)
    {
        return outline.build({points_, count_, subpath_.closed, subpath_});
    }

    // The points are in device space afterwards.
    bool buildWithHairline(StrokeOutline& outline)
    {
        for (uint32_t i = 0; i < count_; ++i)
            points_[i] = mappedSaturated(context_.transform, points_[i]);
        return outline.build({points_, count_, subpath_.closed, kNoCurves});
    }

    void fill(const StrokeOutline& outline, const MMPoint2D* polygon, uint32_t count)
    {
        // An outline without height or without points has no bounds either.
        if (outline.bounds().minY < outline.bounds().maxY) bounds_.add(outline.bounds());
        fill(polygon, count);
    }

    void fill(const MMPoint2D* polygon, uint32_t count)
    {
        if (devicePen_.gathered != nullptr)
            devicePen_.gathered->add(polygon, count);
        else
            fillOutline(context_, polygon, count, bounds_);
    }

    bool drawPen(bool sharp)
    {
        StrokeOutline outline(context_.scratchStack, pen(), count_, context_.transform, window_);
        if (!buildWithPen(outline)) return false;
        fill(outline, outline.points(), outline.count());
        const bool mayVanish = !sharp || outline.count() == 0 || devicePen_.capStyle == kCapButt;
        if (!mayVanish && !holdsPixelCentre(outline, outline.points())) lightFirstPixel();
        return true;
    }

    void lightFirstPixel()
    {
        const MMPoint2D start = mappedSaturated(context_.transform, points_[0]);
        const Fixed left = start.x - static_cast<Fixed>(fixFraction(start.x));
        const Fixed top = start.y - static_cast<Fixed>(fixFraction(start.y));
        const Fixed right = saturated(int64_t{left} + kFixedOne);
        const Fixed bottom = saturated(int64_t{top} + kFixedOne);
        MMPoint2D pixel[] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
        // Wound as outlines are, lest the two cancel out where they are filled as one shape.
        if (isMirroring(linearPartOf(context_.transform))) std::reverse(pixel, pixel + 4);
        fill(pixel, 4);
    }

    bool drawHairline()
    {
        StrokeOutline outline(context_.scratchStack, hairline(), count_, kIdentityMatrix, window_);
        if (!buildWithHairline(outline)) return false;
        fill(outline, outline.points(), outline.count());
        return true;
    }

    bool drawPenAndHairline()
    {
        StrokeOutline wide(context_.scratchStack, pen(), count_, context_.transform, window_);
        if (!buildWithPen(wide)) return false;
        StrokeOutline thin(context_.scratchStack, hairline(), count_, kIdentityMatrix, window_);
        if (!buildWithHairline(thin)) return false;
        if (wide.count() == 0 ||
            thin.count() == 0) { // a dot with butt caps, on the device at least
            StrokeOutline& whole = wide.count() == 0 ? thin : wide;
            fill(whole, whole.points(), whole.count());
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
        bounds_.add(wide.bounds());
        fill(thin, both.data(), count);
        return true;
    }

    MMContext2D& context_;
    const ClipWindow window_;
    const DevicePen& devicePen_;
    const Subpath& subpath_;
    MMPoint2D* points_;
    uint32_t count_;
    BoundsUnion bounds_;
};

} // namespace

DevicePen::DevicePen(const MMContext2D& context, uint8_t joins)
    : joinStyle(joins <= kJoinBevel ? joins : uint8_t{kJoinMiter}),
      capStyle(context.capStyle <= kCapSquare ? context.capStyle : uint8_t{kCapButt})
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

int64_t DevicePen::reach(const MMContext2D& context) const
{
    // The corner of a square cap is 1.42 half widths away, a smooth join's tip 1.01.
    constexpr Fixed kLeast = 3 * kFixedHalf;
    const Fixed miter = joinStyle == kJoinMiter ? context.miterLimit : 0;
    const int64_t widest = std::clamp<int64_t>(greatest, kFixedHalf, int64_t{1} << 40);
    return ((widest >> 8) + 1) * (std::max(miter, kLeast) >> 8);
}

BoundsUnion strokeSubpath(MMContext2D& context, const DevicePen& pen, const Subpath& subpath)
{
    const uint64_t total = subpath.pointCount();
    if (context.strokeHalfWidth <= 0 || total == 0) return {};
    const uint32_t count = static_cast<uint32_t>(std::min(total, kTooManyPoints));
    ScratchArray<MMPoint2D> points(context.scratchStack,
                                   total < kTooManyPoints ? count : UINT32_MAX);
    if (!points) {
        noteOutOfMemory(context);
        return {};
    }
    MMPoint2D* end = points.data();
    for (uint32_t i = 0; i < subpath.recordCount; ++i) {
        const MMLinkPath& record = subpath.records[i];
        end = std::copy(record.points, record.points + record.count, end);
    }
    Stroke stroke(context, pen, subpath, points.data(), count);
    if (!stroke.draw()) noteOutOfMemory(context);
    return stroke.bounds();
}

void MMContext2D::drawPolyline(MMLinkPath* records, int16_t segmentCount, uint8_t closed)
{
    pointStep = 1;
    const uint32_t count = readableRecords(records, segmentCount);
    strokeSubpath(*this, DevicePen(*this), {records, count, closed != 0}).storeTo(*this);
}

} // namespace Graphics2D
} // namespace KAVO
