// SPDX-License-Identifier: MIT
// The outline of one stroked line: offset edges, joins and caps. Internal.
#pragma once

#include "graphics2d/BoundsUnion.h"
#include "graphics2d/raster/ClipWindow.h"
#include "graphics2d/strokes/CircleSteps.h"
#include "graphics2d/strokes/Subpath.h"
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
    // A square of one unit along the axes at every corner, and at the start of lines shorter than
    // two units: the pen of one pixel, which would otherwise miss the centres of small lines.
    bool marksCorners = false;
    bool roundsCurves = false; // joins inside curves are round also where they are smooth
};

// Points to be stroked, at least one; neighbours may be the same. subpath says which edges are
// chords of curves, if any.
struct StrokeLine {
    const MMPoint2D* points;
    uint32_t count;
    bool closed;
    const Subpath& subpath;
};

// Builds the outline in scratch memory, in device space. It is one polygon to be filled non-zero.
class StrokeOutline {
public:
    StrokeOutline(MMStackContext& stack, const StrokePen& pen, uint32_t pointCount,
                  const Matrix2D& toDevice, const ClipWindow& window);

    // Outlines a line. Call once, as long as this is the newest scratch memory. False when the
    // scratch stack is exhausted.
    bool build(const StrokeLine& line);

    // The outline less what cannot be seen of it.
    MMPoint2D* points() { return points_.data(); }
    uint32_t count() const { return front_; }

    // Of the whole outline.
    const BoundsUnion& bounds() const { return bounds_; }

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
    void putDevice(Side side, const MMPoint2D& point);
    void putAlong(Side side, const MMPoint2D& vertex, const UnitVector& direction);
    void putArc(Side side, const MMPoint2D& centre, const UnitVector& from, Degrees angle);
    void putMark(const MMPoint2D& centre);
    bool meetsAtTip(Fixed30 dot, uint8_t joinStyle) const;
    bool putJoin(const MMPoint2D& vertex, const Polar& before, const Polar& after, bool smooth);
    void putChordEnd(Side side, const MMPoint2D& vertex, const Polar& before, const Polar& after,
                     Fixed30 dot);
    bool putCorner(const MMPoint2D& vertex, const Polar& before, const CurveCorner& corner,
                   const Polar& after);
    void putCap(const MMPoint2D& end, const UnitVector& outward);
    bool putEnd(const MMPoint2D& end, const UnitVector& outward, Side from, Side to);
    bool buildOpen(const StrokeLine& line);
    bool buildClosed(const StrokeLine& line, uint32_t kept);
    bool buildDot(const MMPoint2D& centre);
    void closeGap();

    StrokePen pen_;
    const Matrix2D& toDevice_;
    const ClipWindow& window_;
    BoundsUnion bounds_;
    Fixed30 stepCosine_;    // of a turn by greatestStep
    int64_t leastMiter_;    // 1 + cosine of the sharpest turn that is mitered, in 2.30
    uint32_t room_;         // points that one join, cap or dot may need
    uint32_t capacity_;     // of points_
    uint32_t front_ = 0;    // points on the left, from the start of the array
    uint32_t keptFree_ = 0; // places at the end of the array, not written yet
    uint32_t back_;         // where the points on the right begin; they fill the array from its end
    ScratchArray<MMPoint2D> points_;
};

} // namespace Graphics2D
} // namespace KAVO
