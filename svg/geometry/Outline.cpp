// SPDX-License-Identifier: MIT
#include "svg/geometry/Outline.h"

namespace KAVO {
namespace Svg {

namespace {

constexpr double kPi = 3.14159265358979323846;

double angleOf(Point p)
{
    return std::atan2(p.y, p.x);
}

// Where one coordinate of a curve turns round: the roots of a t^2 + b t + c inside it.
template <class Function>
void forRoots(double a, double b, double c, Function function)
{
    const double root = std::sqrt(b * b - 4 * a * c);
    for (const double t : {(-b + root) / (2 * a), (-b - root) / (2 * a), -c / b}) {
        if (t > 0 && t < 1) // false when there is no such root
            function(t);
    }
}

void includeTurns(Box& box, Point p0, Point c1, Point c2, Point p3)
{
    const Point a = (c1 - c2) * 3 + p3 - p0;
    const Point b = (p0 - c1 * 2 + c2) * 2;
    const Point c = c1 - p0;
    const auto include = [&](double t) { box.include(Outline::pointOnCurve(p0, c1, c2, p3, t)); };
    forRoots(a.x, b.x, c.x, include);
    forRoots(a.y, b.y, c.y, include);
}

} // namespace

Point Outline::pointOnCurve(Point p0, Point c1, Point c2, Point p3, double t)
{
    const double u = 1 - t;
    return p0 * (u * u * u) + c1 * (3 * u * u * t) + c2 * (3 * u * t * t) + p3 * (t * t * t);
}

void Outline::moveTo(Point p)
{
    segments_.push_back({Move, {p, {}, {}}, false});
    start_ = current_ = p;
    open_ = true;
}

// What follows a Close begins where the closed subpath did.
void Outline::beginSubpath()
{
    if (open_) return;
    segments_.push_back({Move, {start_, {}, {}}, true});
    open_ = true;
}

void Outline::lineTo(Point p)
{
    beginSubpath();
    segments_.push_back({Line, {p, {}, {}}, false});
    current_ = p;
}

void Outline::curveTo(Point control1, Point control2, Point end)
{
    beginSubpath();
    segments_.push_back({Curve, {control1, control2, end}, false});
    current_ = end;
}

void Outline::quadraticTo(Point control, Point end)
{
    const double third = 1.0 / 3;
    curveTo(current_ + (control - current_) * (2 * third), end + (control - end) * (2 * third),
            end);
}

void Outline::arcTo(double rx, double ry, double rotation, bool large, bool increasing, Point end)
{
    rx = std::fabs(rx);
    ry = std::fabs(ry);
    const Point start = current_;
    if (rx == 0 || ry == 0) {
        lineTo(end);
        return;
    }
    if (start.x == end.x && start.y == end.y) return;

    // In the coordinates of the unit circle the arc runs from p to q.
    const double cosine = std::cos(rotation * kPi / 180);
    const double sine = std::sin(rotation * kPi / 180);
    Affine fromUnit{rx * cosine, rx * sine, -ry * sine, ry * cosine, 0, 0};
    const std::optional<Affine> toUnit = fromUnit.inverse();
    if (!toUnit) {
        lineTo(end);
        return;
    }
    Point p = toUnit->map(start);
    Point q = toUnit->map(end);
    const double halfChord = std::hypot(q.x - p.x, q.y - p.y) / 2;
    if (halfChord > 1) {
        p = p * (1 / halfChord);
        q = q * (1 / halfChord);
        fromUnit = {fromUnit.a * halfChord,
                    fromUnit.b * halfChord,
                    fromUnit.c * halfChord,
                    fromUnit.d * halfChord,
                    0,
                    0};
    }
    const Point half = (q - p) * 0.5;
    double halfLength = std::hypot(half.x, half.y);
    if (!std::isnormal(halfLength)) { // lost far from the origin, or beyond all numbers
        lineTo(end);
        return;
    }
    halfLength = std::min(1.0, halfLength);
    const double distance = std::sqrt(1 - halfLength * halfLength) / halfLength;
    const double side = large == increasing ? 1 : -1; // of the chord, where the centre is
    const Point centre = p + half + Point{half.y, -half.x} * (side * distance);

    const double from = angleOf(p - centre);
    double sweep = angleOf(q - centre) - from;
    if (increasing && sweep < 0) sweep += 2 * kPi;
    if (!increasing && sweep > 0) sweep -= 2 * kPi;

    // Cubics of up to 90 degrees each.
    const int pieces = static_cast<int>(std::ceil(std::fabs(sweep) / (kPi / 2) - 1e-9));
    const double step = sweep / std::max(pieces, 1);
    const double handle = 4.0 / 3 * std::tan(step / 4);
    for (int i = 0; i < pieces; ++i) {
        const double a0 = from + i * step;
        const double a1 = a0 + step;
        const Point p0{std::cos(a0), std::sin(a0)};
        const Point p1{std::cos(a1), std::sin(a1)};
        const Point control1 = centre + p0 + Point{-p0.y, p0.x} * handle;
        const Point control2 = centre + p1 + Point{p1.y, -p1.x} * handle;
        curveTo(fromUnit.map(control1), fromUnit.map(control2),
                i == pieces - 1 ? end : fromUnit.map(centre + p1));
        segments_.back().inside = i < pieces - 1;
    }
}

void Outline::close()
{
    beginSubpath();
    segments_.push_back({Close, {start_, {}, {}}, false});
    current_ = start_;
    open_ = false;
}

Outline Outline::rectangle(const Box& box)
{
    Outline outline;
    outline.moveTo({box.left, box.top});
    outline.lineTo({box.right, box.top});
    outline.lineTo({box.right, box.bottom});
    outline.lineTo({box.left, box.bottom});
    outline.close();
    return outline;
}

bool Outline::hasCurves() const
{
    return std::any_of(segments_.begin(), segments_.end(),
                       [](const Segment& segment) { return segment.verb == Curve; });
}

Box Outline::bounds() const
{
    Box box;
    Point previous;
    for (const Segment& segment : segments_) {
        const Point* p = segment.points;
        if (segment.verb == Move) {
            previous = p[0];
            continue;
        }
        box.include(previous);
        if (segment.verb == Curve) {
            includeTurns(box, previous, p[0], p[1], p[2]);
            previous = p[2];
        } else {
            previous = p[0];
        }
        box.include(previous);
    }
    return box;
}

void Outline::append(const Outline& other, const Affine& transform)
{
    segments_.reserve(segments_.size() + other.segments_.size());
    for (Segment segment : other.segments_) {
        for (Point& point : segment.points)
            point = transform.map(point);
        segments_.push_back(segment);
    }
    start_ = transform.map(other.start_);
    current_ = transform.map(other.current_);
    open_ = other.open_;
}

Outline Outline::mapped(const Affine& transform) const
{
    Outline result;
    result.append(*this, transform);
    return result;
}

} // namespace Svg
} // namespace KAVO
