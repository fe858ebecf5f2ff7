// SPDX-License-Identifier: MIT
// Points, rectangles and affine transforms of the drawing, in double precision.
//
// The library works in 16.16; an SVG file may mix units of a thousand and of a thousandth of a
// pixel. The program therefore keeps the file's geometry in doubles and hands over what is close to
// device pixels (see PathEncoder.h).
#pragma once

#include <algorithm>
#include <cmath>
#include <optional>

namespace KAVO {
namespace Svg {

struct Point {
    double x = 0;
    double y = 0;
};

inline Point operator+(Point p, Point q)
{
    return {p.x + q.x, p.y + q.y};
}

inline Point operator-(Point p, Point q)
{
    return {p.x - q.x, p.y - q.y};
}

inline Point operator*(Point p, double factor)
{
    return {p.x * factor, p.y * factor};
}

struct Box {
    double left = HUGE_VAL;
    double top = HUGE_VAL;
    double right = -HUGE_VAL;
    double bottom = -HUGE_VAL;

    bool empty() const { return !(left <= right && top <= bottom); }
    double width() const { return right - left; }
    double height() const { return bottom - top; }
    bool hasArea() const { return right > left && bottom > top; }
    Box grown(double by) const { return {left - by, top - by, right + by, bottom + by}; }
    Box common(const Box& other) const
    {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }
    void include(const Box& box)
    {
        if (box.empty()) return;
        include(Point{box.left, box.top});
        include(Point{box.right, box.bottom});
    }
    void include(Point p)
    {
        left = std::min(left, p.x);
        right = std::max(right, p.x);
        top = std::min(top, p.y);
        bottom = std::max(bottom, p.y);
    }
};

// Maps (x, y) to (a x + c y + e, b x + d y + f).
struct Affine {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double e = 0;
    double f = 0;

    Point map(Point p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    Point mapVector(Point p) const { return {a * p.x + c * p.y, b * p.x + d * p.y}; }
    double determinant() const { return a * d - b * c; }

    // Largest absolute sum of a row: no point moves further than this from the origin's image per
    // unit of its larger coordinate.
    double norm() const
    {
        return std::max(std::fabs(a) + std::fabs(c), std::fabs(b) + std::fabs(d));
    }

    bool isFinite() const { return std::isfinite(a + b + c + d + e + f); }

    std::optional<Affine> inverse() const
    {
        const double det = determinant();
        if (!isFinite() || !std::isfinite(1 / det)) return std::nullopt;
        Affine r{d / det, -b / det, -c / det, a / det, 0, 0};
        r.e = -(r.a * e + r.c * f);
        r.f = -(r.b * e + r.d * f);
        return r;
    }

    Box mapBox(const Box& box) const
    {
        Box r;
        r.include(map({box.left, box.top}));
        r.include(map({box.right, box.top}));
        r.include(map({box.left, box.bottom}));
        r.include(map({box.right, box.bottom}));
        return r;
    }
};

// First inner, then outer: the transform of a child within its parent's.
inline Affine operator*(const Affine& outer, const Affine& inner)
{
    const Point origin = outer.map({inner.e, inner.f});
    return {outer.a * inner.a + outer.c * inner.b,
            outer.b * inner.a + outer.d * inner.b,
            outer.a * inner.c + outer.c * inner.d,
            outer.b * inner.c + outer.d * inner.d,
            origin.x,
            origin.y};
}

inline Affine translation(double x, double y)
{
    return {1, 0, 0, 1, x, y};
}

// The transform about an origin elsewhere.
inline Affine around(Point origin, const Affine& transform)
{
    return translation(origin.x, origin.y) * transform * translation(-origin.x, -origin.y);
}

inline Affine rotation(double degrees)
{
    const double angle = degrees * std::acos(-1.0) / 180;
    return {std::cos(angle), std::sin(angle), -std::sin(angle), std::cos(angle), 0, 0};
}

} // namespace Svg
} // namespace KAVO
