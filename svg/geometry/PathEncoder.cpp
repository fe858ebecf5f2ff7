// SPDX-License-Identifier: MIT
#include "svg/geometry/PathEncoder.h"

#include <algorithm>
#include <vector>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

// Of a curve that reaches too far: pixels between a piece and its chord.
constexpr double kTolerance = 1.0 / 16;
constexpr double kMostPieces = 64;

class Encoder {
public:
    explicit Encoder(const PathSpace& space) : space_(space) {}

    void add(const Outline::Segment& segment);

    MMPathBuilder path;

private:
    int piecesOf(Point p0, Point c1, Point c2, Point p3) const;
    void addCuts(Point from, Point to);
    void addCurve(Point p0, Point c1, Point c2, Point p3);

    const PathSpace& space_;
    Point current_;
    Point first_;                    // of the subpath
    std::optional<MMPoint2D> start_; // of a subpath that has no segment yet: it may get none
};

// The library flattens curves as finely as the picture needs. One with points out of its reach is
// cut before, so that what is near keeps its shape. A curve stays within an eighth of its largest
// second derivative of its chord, and cutting it into n equal pieces divides that by n * n.
int Encoder::piecesOf(Point p0, Point c1, Point c2, Point p3) const
{
    if (space_.reaches(p0) && space_.reaches(c1) && space_.reaches(c2) && space_.reaches(p3))
        return 1;
    const Point bend1 = p0 - c1 * 2 + c2;
    const Point bend2 = c1 - c2 * 2 + p3;
    const double bend =
        std::max(std::hypot(bend1.x, bend1.y), std::hypot(bend2.x, bend2.y)) * space_.pixelSize;
    return static_cast<int>(
        std::clamp(std::ceil(std::sqrt(0.75 * bend / kTolerance)), 1.0, kMostPieces));
}

void Encoder::addCurve(Point p0, Point c1, Point c2, Point p3)
{
    for (int left = piecesOf(p0, c1, c2, p3); left > 0; --left) {
        const double t = 1.0 / left; // the first of the pieces that are left
        const Point a = p0 + (c1 - p0) * t;
        const Point b = c1 + (c2 - c1) * t;
        const Point c = c2 + (p3 - c2) * t;
        const Point ab = a + (b - a) * t;
        const Point bc = b + (c - b) * t;
        const Point middle = left == 1 ? p3 : ab + (bc - ab) * t;
        const MMPoint2D control1 = space_.point(a);
        const MMPoint2D control2 = space_.point(ab);
        const MMPoint2D end = space_.point(middle);
        path.cubicTo(control1.x, control1.y, control2.x, control2.y, end.x, end.y);
        p0 = middle;
        c1 = bc;
        c2 = c;
    }
}

// A line that reaches too far gets points where it enters and leaves what is in reach: points
// beyond are held at the rim, and may not pull what is near with them.
void Encoder::addCuts(Point from, Point to)
{
    if (space_.reaches(from) && space_.reaches(to)) return;
    const Point start = (from - space_.origin) * space_.scale;
    const Point way = (to - from) * space_.scale;
    std::vector<double> cuts;
    for (const double rim : {-PathSpace::kReach, PathSpace::kReach}) {
        for (const double cut : {(rim - start.x) / way.x, (rim - start.y) / way.y}) {
            if (cut > 0 && cut < 1) cuts.push_back(cut);
        }
    }
    std::sort(cuts.begin(), cuts.end());
    for (const double cut : cuts) {
        const MMPoint2D p = space_.point(from + (to - from) * cut);
        path.lineTo(p.x, p.y);
    }
}

void Encoder::add(const Outline::Segment& segment)
{
    const Point* p = segment.points;
    const MMPoint2D end = space_.point(p[0]);
    if (segment.verb == Outline::Move) {
        start_ = end;
        current_ = first_ = p[0];
        return;
    }
    if (start_) path.moveTo(start_->x, start_->y);
    start_.reset();
    switch (segment.verb) {
    case Outline::Move:
        break;
    case Outline::Line:
        addCuts(current_, p[0]);
        path.lineTo(end.x, end.y);
        current_ = p[0];
        break;
    case Outline::Curve:
        addCurve(current_, p[0], p[1], p[2]);
        current_ = p[2];
        break;
    case Outline::Close:
        addCuts(current_, first_);
        path.close();
        current_ = first_;
        break;
    }
}

} // namespace

Fixed toFixed(double value)
{
    constexpr double kLimit = 32767.0;
    const double notBelow = value > -kLimit ? value : -kLimit; // also when it is not a number
    return static_cast<Fixed>(std::lround(std::min(notBelow, kLimit) * 65536));
}

std::optional<PathSpace> PathSpace::make(const Affine& userToDevice, Point pictureCentre)
{
    const std::optional<Affine> inverse = userToDevice.inverse();
    if (!inverse || !inverse->isFinite()) return std::nullopt;
    int exponent = 0;
    std::frexp(userToDevice.norm(), &exponent);
    PathSpace space;
    space.scale = std::ldexp(1.0, exponent);
    space.origin = inverse->map(pictureCentre);
    space.pixelSize = userToDevice.norm();
    space.transform = {toFixed(userToDevice.a / space.scale),
                       toFixed(userToDevice.b / space.scale),
                       toFixed(userToDevice.c / space.scale),
                       toFixed(userToDevice.d / space.scale),
                       toFixed(pictureCentre.x),
                       toFixed(pictureCentre.y)};
    return space;
}

Fixed PathSpace::length(double userLength) const
{
    return toFixed(std::clamp(userLength * scale, 0.0, kReach));
}

MMPoint2D PathSpace::point(Point user) const
{
    const Point p = (user - origin) * scale;
    const auto held = [](double v) { return toFixed(std::max(-kReach, std::min(kReach, v))); };
    return {held(p.x), held(p.y)};
}

bool PathSpace::reaches(Point user) const
{
    const Point p = (user - origin) * scale;
    return std::fabs(p.x) <= kReach && std::fabs(p.y) <= kReach;
}

MMPathBuilder encodePath(const Outline& outline, const PathSpace& space)
{
    Encoder encoder(space);
    for (const Outline::Segment& segment : outline.segments())
        encoder.add(segment);
    return std::move(encoder.path);
}

} // namespace Svg
} // namespace KAVO
