// SPDX-License-Identifier: MIT
// The outline of one stroked line: offset edges, joins and caps. Internal.
#pragma once

#include "graphics2d/strokes/CircleSteps.h"
#include "math/MMPoint2D.h"
#include "memory/ScratchArray.h"

namespace KAVO {
namespace Graphics2D {

// What a line is stroked with.
struct StrokePen {
    Fixed halfWidth; // above 0, in the units of the points
    Fixed miterLimit;
    uint8_t joinStyle;    // MMJoinStyle
    uint8_t capStyle;     // MMCapStyle
    Degrees greatestStep; // between neighbouring points of round joins and caps
    UnitVector direction; // of a line without length
};

// Builds the outline in scratch memory. It is one polygon to be filled non-zero.
class StrokeOutline {
public:
    StrokeOutline(MMStackContext& stack, const StrokePen& pen, uint32_t vertexCount);

    // Outlines a line through points of which no two neighbours are the same; count is at least 1.
    // When closed, the last and the first point differ too, unless there is only one. Call once, as
    // long as this is the newest scratch memory. False when the scratch stack is exhausted.
    bool build(const MMPoint2D* points, uint32_t count, bool closed);

    MMPoint2D* points() { return points_.data(); }
    uint32_t count() const { return front_; }

private:
    enum Side { kLeft, kRight };

    // A displacement from a vertex, in units of the points.
    struct Offset {
        int64_t x;
        int64_t y;
    };

    bool reserve() { return back_ - front_ >= room_ || grow(); }
    bool grow();
    void put(Side side, const MMPoint2D& vertex, const Offset& offset);
    void putAlong(Side side, const MMPoint2D& vertex, const UnitVector& direction);
    void putArc(Side side, const MMPoint2D& centre, const UnitVector& from, Degrees angle);
    bool meetsAtTip(Fixed30 dot) const;
    bool joinsRound(Fixed30 dot) const;
    void putJoin(const MMPoint2D& vertex, const Polar& before, const Polar& after);
    void putCap(const MMPoint2D& end, const UnitVector& outward);
    bool putEnd(const MMPoint2D& end, const UnitVector& outward, Side from, Side to);
    bool buildOpen(const MMPoint2D* points, uint32_t count);
    bool buildClosed(const MMPoint2D* points, uint32_t count);
    bool buildDot(const MMPoint2D& centre);
    void closeGap();

    StrokePen pen_;
    Fixed30 stepCosine_; // of a turn by greatestStep
    int64_t leastMiter_; // 1 + cosine of the sharpest turn that is mitered, in 2.30
    uint32_t room_;      // points that one join, cap or dot may need
    uint32_t capacity_;  // of points_
    uint32_t front_ = 0; // points on the left, from the start of the array
    uint32_t back_;      // where the points on the right begin; they fill the array from its end
    ScratchArray<MMPoint2D> points_;
};

} // namespace Graphics2D
} // namespace KAVO
