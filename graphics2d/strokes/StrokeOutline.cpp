// SPDX-License-Identifier: MIT
// The outline of one stroked line.
//
// Walking along the line writes its left side forward from the start of a buffer and its right side
// backward from the buffer's end; together they are the outline, and the buffer grows when they
// meet. A closed line makes two loops, joined by a bridge that is walked once each way.
//
// The outline's winding number is never 0 inside the stroke. Every edge is a rectangle, every outer
// join a wedge from the vertex, and all turn the same way, so their sum has winding numbers of 1
// and more exactly in their union. Summed up, the outline of rectangles and wedges passes through
// the vertex on the inner side of a turn. Where both edges are long enough, it takes the short cut
// to the point where their inner sides meet. That takes away a kite once, which both rectangles
// contain. As a kite reaches no farther than half of either edge, it meets no other kite in a
// rectangle: any point keeps at least half of its rectangles, so it keeps one.
//
// Where a curve ends, its true tangent is an edge without length between the last chord and what
// comes after: a smooth join leads from the chord to it, and the join or cap proper is built on it.
//
// Points leave this file mapped to the device. Three in a row on one side of all that can be seen
// are two: the outline of a vast pen takes memory for what touches the clip rectangle only.
#include "graphics2d/strokes/StrokeOutline.h"

#include "graphics2d/MMContext2D.h"
#include "math/Points.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// Turns below 15 degrees happen in flattened curves: they are never beveled.
constexpr Fixed30 kSmoothCosine = 1037154959;

// Inner sides of sharper turns than 154 degrees do not take the short cut, and turns within 0.08
// degrees of a reversal get no miter: the quotients would lose their precision.
constexpr Fixed30 kSharpestShortCut = -966367642; // -0.9
constexpr int64_t kLeastMiter = 1024;

// (1 + cosine) of the sharpest turn to be mitered. With a turn of a, the miter's length by the
// stroke's width is 1 / cos(a / 2), and 2 cos^2(a / 2) is 1 + cos a.
int64_t leastMiterOf(Fixed limit)
{
    if (limit <= 0) return INT64_MAX;
    const uint64_t square = static_cast<uint64_t>(int64_t{limit} * limit); // 32.32
    return std::max(static_cast<int64_t>((uint64_t{1} << 63) / square), kLeastMiter);
}

// A run of equal points: one vertex.
struct VertexRun {
    uint32_t first;
    uint32_t last;

    uint32_t next() const { return last + 1; }
};

// The vertex that begins with the given point; count is more than that.
VertexRun vertexAt(const MMPoint2D* points, uint32_t first, uint32_t count)
{
    uint32_t last = first;
    while (last + 1 < count && points[last + 1] == points[first])
        ++last;
    return {first, last};
}

Polar edgeBetween(const MMPoint2D& from, const MMPoint2D& to)
{
    return polarOf(int64_t{to.x} - from.x, int64_t{to.y} - from.y);
}

constexpr int64_t kNoEdge = INT64_MAX;

// A tangent as an edge to join a chord with.
Polar tangent(const UnitVector& direction)
{
    return {direction, kNoEdge};
}

// What most lines leave of their outlines fits; the buffer of others grows with what is seen of
// them.
constexpr uint32_t kUsualOutlinePoints = 4096;

uint32_t fitted(uint64_t count)
{
    return static_cast<uint32_t>(std::min<uint64_t>(count, UINT32_MAX));
}

} // namespace

StrokeOutline::StrokeOutline(MMStackContext& stack, const StrokePen& pen, uint32_t pointCount,
                             const Matrix2D& toDevice, const ClipWindow& window)
    : pen_(pen), toDevice_(toDevice), window_(window), stepCosine_(rotationBy(pen.greatestStep).x),
      leastMiter_(leastMiterOf(pen.miterLimit)),
      room_(static_cast<uint32_t>(kDegrees360 / pen.greatestStep) + 8),
      capacity_(std::min(fitted(uint64_t{pointCount} * 4), kUsualOutlinePoints) + room_ * 2),
      back_(capacity_), points_(stack, capacity_)
{
}

// Makes room between the two sides when fewer than room_ points fit.
bool StrokeOutline::grow()
{
    const uint32_t used = capacity_ - back_;
    const uint32_t grown = fitted(uint64_t{capacity_} * 2);
    if (!points_.resize(grown)) return false;
    std::copy_backward(&points_[back_], points_.data() + capacity_, points_.data() + grown);
    capacity_ = grown;
    back_ = grown - used;
    return back_ - front_ >= room_;
}

void StrokeOutline::put(Side side, const MMPoint2D& vertex, const Offset& offset)
{
    putDevice(side, mappedSaturated(toDevice_, {saturated(vertex.x + offset.x),
                                                saturated(vertex.y + offset.y)}));
}

void StrokeOutline::putDevice(Side side, const MMPoint2D& point)
{
    bounds_.addPoint(point);
    const bool isSeen = window_.contains(point.x, point.y, point.x, point.y);
    const uint32_t written = side == kLeft ? front_ : capacity_ - keptFree_ - back_;
    if (!isSeen && written >= 2) {
        MMPoint2D& last = side == kLeft ? points_[front_ - 1] : points_[back_];
        const MMPoint2D& before = side == kLeft ? points_[front_ - 2] : points_[back_ + 1];
        if ((window_.sidesOf(point) & window_.sidesOf(last) & window_.sidesOf(before)) != 0) {
            last = point;
            return;
        }
    }
    points_[side == kLeft ? front_++ : --back_] = point;
}

// The point half a width away in the given direction.
void StrokeOutline::putAlong(Side side, const MMPoint2D& vertex, const UnitVector& direction)
{
    put(side, vertex,
        {scaledAway(direction.x, pen_.halfWidth), scaledAway(direction.y, pen_.halfWidth)});
}

// The points between the ends of an arc that begins in the direction from; clockwise on the left
// and counter-clockwise on the right, as outer joins go.
void StrokeOutline::putArc(Side side, const MMPoint2D& centre, const UnitVector& from,
                           Degrees angle)
{
    CircleSteps steps(angle, pen_.greatestStep);
    if (side == kRight) steps.rotation.y = -steps.rotation.y;
    UnitVector direction = from;
    for (uint32_t i = 1; i < steps.count; ++i) {
        direction = rotated(direction, steps.rotation);
        putAlong(side, centre, direction);
    }
}

// A detour on the left side round the unit square at a point.
void StrokeOutline::putMark(const MMPoint2D& centre)
{
    const MMPoint2D from = points_[front_ - 1];
    constexpr int64_t kHalf = kFixedHalf;
    const Offset corners[] = {
        {-kHalf, -kHalf}, {kHalf, -kHalf}, {kHalf, kHalf}, {-kHalf, kHalf}, {-kHalf, -kHalf}};
    for (const Offset& corner : corners)
        put(kLeft, centre, corner);
    putDevice(kLeft, from);
}

// True when the outer sides are drawn out to where they meet: for miters, and instead of an arc or
// a bevel that nobody could tell from it.
bool StrokeOutline::meetsAtTip(Fixed30 dot, uint8_t joinStyle) const
{
    const bool smooth = dot >= kSmoothCosine;
    if (joinStyle == kJoinMiter && (smooth || kOne30 + int64_t{dot} >= leastMiter_)) return true;
    return dot >= stepCosine_ && (smooth || joinStyle == kJoinRound);
}

// A join of two edges. A smooth one lies inside a curve: it is round where it turns too far for a
// flattened curve, whatever the pen's style. False when the scratch stack is exhausted.
bool StrokeOutline::putJoin(const MMPoint2D& vertex, const Polar& before, const Polar& after,
                            bool smooth)
{
    if (!reserve()) return false;
    const UnitVector& d1 = before.direction;
    const UnitVector& d2 = after.direction;
    const Fixed30 cross = crossOf(d1, d2);
    const Fixed30 dot = dotOf(d1, d2);
    const int64_t onePlusDot = kOne30 + int64_t{dot};
    const int64_t width = int64_t{pen_.halfWidth} * 2;

    // The kite's sides are halfWidth * tan(a / 2), its extent along an edge halfWidth * sin a where
    // that is more. tan(a / 2) is sin a / (1 + cos a).
    const int64_t reach = width * static_cast<int64_t>(magnitudeOf(cross));
    const bool shortCut =
        dot > kSharpestShortCut &&
        reach <= std::min(before.length, after.length) * std::min<int64_t>(onePlusDot, kOne30);
    const bool flat = dot >= kSmoothCosine;
    const bool rounds = smooth && (!flat || pen_.roundsCurves);
    const uint8_t joinStyle = rounds ? uint8_t{kJoinRound} : pen_.joinStyle;
    const bool tip = meetsAtTip(dot, joinStyle);

    const Side outer = cross >= 0 ? kLeft : kRight;
    const Side inner = cross >= 0 ? kRight : kLeft;
    const UnitVector out1 = cross >= 0 ? turnedLeft(d1) : turnedRight(d1);
    const UnitVector out2 = cross >= 0 ? turnedLeft(d2) : turnedRight(d2);
    Offset meeting = {0, 0};
    if (tip || shortCut) {
        meeting = {(int64_t{out1.x} + out2.x) * pen_.halfWidth / onePlusDot,
                   (int64_t{out1.y} + out2.y) * pen_.halfWidth / onePlusDot};
    }

    if (tip) {
        put(outer, vertex, meeting);
    } else {
        putAlong(outer, vertex, out1);
        if (flat || joinStyle == kJoinRound) putArc(outer, vertex, out1, angleBetween(dot, cross));
        putAlong(outer, vertex, out2);
    }
    if (before.length == kNoEdge || after.length == kNoEdge) {
        putChordEnd(inner, vertex, before, after, dot);
    } else if (shortCut) {
        put(inner, vertex, {-meeting.x, -meeting.y});
    } else {
        putAlong(inner, vertex, opposite(out1));
        put(inner, vertex, {0, 0});
        putAlong(inner, vertex, opposite(out2));
    }
    if (pen_.marksCorners && !flat) putMark(vertex);
    return true;
}

// The inner side of a smooth join of a chord and the tangent at its end: where the chord's side
// meets the line through the vertex across the tangent, on which the curve ends.
void StrokeOutline::putChordEnd(Side side, const MMPoint2D& vertex, const Polar& before,
                                const Polar& after, Fixed30 dot)
{
    const bool chordFirst = after.length == kNoEdge;
    const UnitVector& along = chordFirst ? after.direction : before.direction;
    const UnitVector across = side == kLeft ? turnedLeft(along) : turnedRight(along);
    const int64_t chord = chordFirst ? before.length : after.length;
    const int64_t cross = static_cast<int64_t>(magnitudeOf(crossOf(before.direction, along))) +
                          static_cast<int64_t>(magnitudeOf(crossOf(along, after.direction)));
    if (dot > kOne30 / 2 && pen_.halfWidth * cross <= chord * dot) {
        put(side, vertex,
            {int64_t{across.x} * pen_.halfWidth / dot, int64_t{across.y} * pen_.halfWidth / dot});
        return;
    }
    const UnitVector& first = before.direction;
    const UnitVector& second = after.direction;
    putAlong(side, vertex, side == kLeft ? turnedLeft(first) : turnedRight(first));
    put(side, vertex, {0, 0});
    putAlong(side, vertex, side == kLeft ? turnedLeft(second) : turnedRight(second));
}

// What joins two edges at a vertex, with the tangents of curves between them.
bool StrokeOutline::putCorner(const MMPoint2D& vertex, const Polar& before,
                              const CurveCorner& corner, const Polar& after)
{
    const Polar arriving = corner.arrives ? Polar{corner.before, 0} : before;
    const Polar leaving = corner.leaves ? Polar{corner.after, 0} : after;
    return (!corner.arrives || putJoin(vertex, before, tangent(corner.before), true)) &&
           putJoin(vertex, arriving, leaving, corner.inside) &&
           (!corner.leaves || putJoin(vertex, tangent(corner.after), after, true));
}

// The points between the ends of a cap, clockwise, on the left side.
void StrokeOutline::putCap(const MMPoint2D& end, const UnitVector& outward)
{
    if (pen_.capStyle == kCapRound) {
        putArc(kLeft, end, turnedLeft(outward), kDegrees180);
    } else if (pen_.capStyle == kCapSquare) {
        const int64_t x = scaledAway(outward.x, pen_.halfWidth);
        const int64_t y = scaledAway(outward.y, pen_.halfWidth);
        put(kLeft, end, {x + y, y - x});
        put(kLeft, end, {x - y, y + x});
    }
}

// An end of the line: from one side over the cap to the other.
bool StrokeOutline::putEnd(const MMPoint2D& end, const UnitVector& outward, Side from, Side to)
{
    if (!reserve()) return false;
    putAlong(from, end, turnedLeft(outward));
    putCap(end, outward);
    putAlong(to, end, turnedRight(outward));
    return true;
}

bool StrokeOutline::buildOpen(const StrokeLine& line)
{
    const MMPoint2D* points = line.points;
    CurveWalk curves(line.subpath);
    VertexRun at = vertexAt(points, 0, line.count);
    Polar edge = edgeBetween(points[0], points[at.next()]);
    CurveCorner corner = curves.cornerAt(at.first, at.last);
    const UnitVector start = corner.leaves ? corner.after : edge.direction;
    if (!putEnd(points[0], opposite(start), kRight, kLeft)) return false;
    if (corner.leaves && !putJoin(points[0], tangent(start), edge, true)) return false;
    int64_t length = edge.length;
    for (at = vertexAt(points, at.next(), line.count); at.next() < line.count;
         at = vertexAt(points, at.next(), line.count)) {
        const MMPoint2D& vertex = points[at.first];
        const Polar next = edgeBetween(vertex, points[at.next()]);
        if (!putCorner(vertex, edge, curves.cornerAt(at.first, at.last), next)) return false;
        edge = next;
        length += edge.length;
    }
    const MMPoint2D& end = points[at.first];
    corner = curves.cornerAt(at.first, at.last);
    if (corner.arrives && !putJoin(end, edge, tangent(corner.before), true)) return false;
    if (!reserve()) return false;
    if (pen_.marksCorners && length < 2 * int64_t{kFixedOne}) putMark(points[0]);
    return putEnd(end, corner.arrives ? corner.before : edge.direction, kLeft, kRight);
}

// kept points are left without those at the end that equal the first.
bool StrokeOutline::buildClosed(const StrokeLine& line, uint32_t kept)
{
    const MMPoint2D* points = line.points;
    keptFree_ = 1; // for the right side's last point once more
    --back_;
    CurveWalk curves(line.subpath);
    Polar edge = edgeBetween(points[kept - 1], points[0]);
    for (uint32_t first = 0; first < kept;) {
        const VertexRun at = vertexAt(points, first, kept);
        const Polar next = edgeBetween(points[at.first], points[at.next() < kept ? at.next() : 0]);
        const CurveCorner corner = first == 0
                                       ? CurveWalk::cornerAtStart(line.subpath, kept, at.last)
                                       : curves.cornerAt(at.first, at.last);
        if (!putCorner(points[at.first], edge, corner, next)) return false;
        edge = next;
        first = at.next();
    }
    if (!reserve()) return false;
    points_[front_++] = points_[0];
    points_[capacity_ - 1] = points_[back_];
    return true;
}

// What a line without length leaves: a disc, a square along its direction, or nothing.
bool StrokeOutline::buildDot(const MMPoint2D& centre)
{
    if (!reserve()) return false;
    if (pen_.capStyle == kCapRound) {
        putAlong(kLeft, centre, pen_.direction);
        putArc(kLeft, centre, pen_.direction, kDegrees360);
    } else if (pen_.capStyle == kCapSquare) {
        putCap(centre, pen_.direction);
        putCap(centre, opposite(pen_.direction));
    }
    return true;
}

void StrokeOutline::closeGap()
{
    MMPoint2D* const begin = points_.data();
    const MMPoint2D* end = std::copy(begin + back_, begin + capacity_, begin + front_);
    front_ = static_cast<uint32_t>(end - begin);
}

bool StrokeOutline::build(const StrokeLine& line)
{
    if (!points_) return false;
    uint32_t kept = line.count;
    while (kept > 1 && line.points[kept - 1] == line.points[0] && line.closed)
        --kept;
    const bool isDot = vertexAt(line.points, 0, kept).next() == kept;
    const bool built = isDot         ? buildDot(line.points[0])
                       : line.closed ? buildClosed(line, kept)
                                     : buildOpen(line);
    if (built) closeGap();
    return built;
}

} // namespace Graphics2D
} // namespace KAVO
