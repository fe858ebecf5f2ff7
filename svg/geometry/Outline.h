// SPDX-License-Identifier: MIT
// A path in user space, in double precision.
#pragma once

#include "svg/geometry/Affine.h"

#include <vector>

namespace KAVO {
namespace Svg {

class Outline {
public:
    enum Verb { Move, Line, Curve, Close };
    struct Segment {
        Verb verb;
        Point points[3];     // the end is points[0]; of a curve points[2], after its control points
        bool inside = false; // of an arc, or before its subpath: the end is no vertex of the path
        Point end() const { return points[verb == Curve ? 2 : 0]; }
    };

    static Outline rectangle(const Box& box); // clockwise from its top left corner

    // Of a cubic curve, at t from 0 to 1.
    static Point pointOnCurve(Point p0, Point control1, Point control2, Point p3, double t);

    void moveTo(Point p);
    void lineTo(Point p);
    void curveTo(Point control1, Point control2, Point end);
    void quadraticTo(Point control, Point end);
    // An elliptical arc to end: radii, direction of the x radius in degrees, and which of the four
    // arcs that fit. Radii too short to reach are enlarged.
    void arcTo(double rx, double ry, double rotation, bool large, bool increasing, Point end);
    void close();
    void append(const Outline& other, const Affine& transform);

    const std::vector<Segment>& segments() const { return segments_; }
    bool empty() const { return segments_.empty(); }
    bool hasCurves() const;
    Point current() const { return current_; }
    // Tight, also around curves; a Move that nothing follows does not count.
    Box bounds() const;
    Outline mapped(const Affine& transform) const;

private:
    void beginSubpath();

    std::vector<Segment> segments_;
    Point start_; // of the subpath
    Point current_;
    bool open_ = false; // a Move has been written that nothing has closed
};

} // namespace Svg
} // namespace KAVO
