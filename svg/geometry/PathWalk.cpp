// SPDX-License-Identifier: MIT
#include "svg/geometry/PathWalk.h"

namespace KAVO {
namespace Svg {

namespace {

constexpr size_t kMostChords = 1u << 18; // of all curves, as far as each still has a few
constexpr size_t kMostPieces = 64;
constexpr size_t kFewestPieces = 4;

} // namespace

PathWalk::PathWalk(const Outline& outline)
{
    const size_t share = kMostChords / std::max<size_t>(1, outline.segments().size());
    const size_t pieces = std::clamp(share, kFewestPieces, kMostPieces);
    Point current;
    for (const Outline::Segment& segment : outline.segments()) {
        const Point* p = segment.points;
        if (segment.verb == Outline::Curve) {
            Point from = current;
            for (size_t i = 1; i <= pieces; ++i) {
                const Point to =
                    Outline::pointOnCurve(current, p[0], p[1], p[2],
                                          static_cast<double>(i) / static_cast<double>(pieces));
                addChord(from, to);
                from = to;
            }
        } else if (segment.verb != Outline::Move) {
            addChord(current, p[0]);
        }
        current = segment.end();
    }
}

void PathWalk::addChord(Point from, Point to)
{
    const double end = length() + std::hypot(to.x - from.x, to.y - from.y);
    if (end > length() && std::isfinite(end)) chords_.push_back({from, to, end});
}

std::optional<PathWalk::Place> PathWalk::at(double distance) const
{
    if (!(distance >= 0 && distance <= length()) || chords_.empty()) return std::nullopt;
    const auto chord = std::lower_bound(chords_.begin(), chords_.end(), distance,
                                        [](const Chord& c, double d) { return c.end < d; });
    const Point along = chord->to - chord->from;
    const double start = chord == chords_.begin() ? 0 : (chord - 1)->end;
    const double part = (distance - start) / (chord->end - start);
    return Place{chord->from + along * part, std::atan2(along.y, along.x) * 180 / std::acos(-1.0)};
}

} // namespace Svg
} // namespace KAVO
