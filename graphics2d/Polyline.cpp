// Stroking of lines.
//
// The outline is built in user space and mapped as a whole, so that the pen takes part in scaling,
// skewing and mirroring. Without anti-aliasing a pen that can be thinner than a device pixel would
// leave gaps: its stroke is united with that of a pen one pixel wide in device space, or replaced
// by it when it is thinner everywhere.
#include "graphics2d/BoundsUnion.h"
#include "graphics2d/Rasteriser.h"
#include "graphics2d/StrokeOutline.h"
#include "graphics2d/Stroker.h"
#include "math/FixedMath.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// How far round joins and caps may stray from circles, in device pixels. Even 1/8 would show in
// every cap.
constexpr Fixed kSagitta = kFixedOne / 256;
constexpr Fixed kWidePenSagitta = kFixedOne / 64;
constexpr int64_t kWidePen = 64 * kFixedOne; // half width

// Round joins of a line with very many points make no more than about this many points in all.
constexpr int64_t kMaxRoundPoints = 1 << 23;

// A line whose outline no scratch stack could hold.
constexpr uint64_t kTooManyPoints = 1 << 28;

// v scaled by a stretch factor.
int64_t stretched(Fixed v, int64_t factor)
{
    return (v * (factor >> 1)) >> 15;
}

// The pen of the context's style; halfWidth in the units of the outline, deviceHalfWidth where it
// is widest on the device.
StrokePen penOf(const MMContext2D& context, Fixed halfWidth, int64_t deviceHalfWidth,
                uint32_t vertexCount)
{
    const Fixed sagitta = deviceHalfWidth <= kWidePen ? kSagitta : kWidePenSagitta;
    const int64_t leastStep = int64_t{kDegrees180} * vertexCount / kMaxRoundPoints;
    const Degrees step = static_cast<Degrees>(
        std::clamp<int64_t>(leastStep, stepWithin(sagitta, deviceHalfWidth), 45 * kFixedOne));
    return {halfWidth, context.miterLimit, context.joinStyle, context.capStyle, step};
}

// As Matrix2D::transform, but points beyond the range stop at its end instead of wrapping.
void transformSaturated(const Matrix2D& m, MMPoint2D* points, uint32_t count)
{
    for (MMPoint2D* p = points; p != points + count; ++p) {
        const int64_t x = p->x;
        const int64_t y = p->y;
        p->x = saturated(((x * m.a) >> 16) + ((y * m.c) >> 16) + m.e);
        p->y = saturated(((x * m.b) >> 16) + ((y * m.d) >> 16) + m.f);
    }
}

// Drops every point that equals the one before it, and at the end of a closed line those that equal
// the first. Returns how many are left.
uint32_t dropRepeated(MMPoint2D* points, uint32_t count, bool closed)
{
    count = static_cast<uint32_t>(std::unique(points, points + count) - points);
    while (closed && count > 1 && points[count - 1] == points[0])
        --count;
    return count;
}

// One line to be stroked, in scratch memory.
class Stroke {
public:
    Stroke(MMContext2D& context, MMPoint2D* points, uint32_t count, bool closed)
        : context_(context), points_(points), count_(count), closed_(closed)
    {
        const Matrix2D& m = context.transform;
        const Stretch stretch = stretchOf({m.a, m.b, m.c, m.d});
        greatest_ = stretched(context.strokeHalfWidth, stretch.greatest);
        smallest_ = stretched(context.strokeHalfWidth, stretch.smallest);
    }

    // False when the scratch stack is exhausted.
    bool draw()
    {
        if ((context_.antiAlias & 1) != 0 || smallest_ >= kFixedHalf) return drawPen();
        return greatest_ > kFixedHalf ? drawPenAndHairline() : drawHairline();
    }

private:
    StrokePen pen() const { return penOf(context_, context_.strokeHalfWidth, greatest_, count_); }

    StrokePen hairline() const { return penOf(context_, kFixedHalf, kFixedHalf, count_); }

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
        fillPolygon(context_, polygon, count, kFillNonZero);
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
        if (wide.count() == 0) return true; // a dot with butt caps; both are empty
        if (mirrors()) std::reverse(thin.points(), thin.points() + thin.count());

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

    // True when the transform turns outlines the other way round.
    bool mirrors() const
    {
        const Matrix2D& m = context_.transform;
        return int64_t{m.a} * m.d < int64_t{m.b} * m.c;
    }

    MMContext2D& context_;
    MMPoint2D* points_;
    uint32_t count_;
    bool closed_;
    int64_t greatest_; // half width on the device where the pen is widest, in 16.16 pixels
    int64_t smallest_; // and where it is narrowest
};

} // namespace

void strokeSubpath(MMContext2D& context, const MMLinkPath* records, uint32_t recordCount,
                   bool closed)
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
    if (!Stroke(context, points.data(), count, closed).draw())
        context.outOfMemory |= kScratchExhausted;
}

void MMContext2D::drawPolyline(MMLinkPath* records, int16_t segmentCount, uint8_t closed)
{
    const uint32_t count = segmentCount > 0 ? static_cast<uint32_t>(segmentCount) : 0;
    strokeSubpath(*this, records, count, closed != 0);
}

} // namespace Graphics2D
} // namespace KAVO
