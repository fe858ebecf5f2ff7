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
#include "graphics2d/strokes/StrokeOutline.h"

#include "graphics2d/MMContext2D.h"
#include "math/WideMath.h"

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

Polar edgeBetween(const MMPoint2D& from, const MMPoint2D& to)
{
    return polarOf(int64_t{to.x} - from.x, int64_t{to.y} - from.y);
}

uint32_t fitted(uint64_t count)
{
    return static_cast<uint32_t>(std::min<uint64_t>(count, UINT32_MAX));
}

} // namespace

StrokeOutline::StrokeOutline(MMStackContext& stack, const StrokePen& pen, uint32_t vertexCount)
    : pen_(pen), stepCosine_(rotationBy(pen.greatestStep).x),
      leastMiter_(leastMiterOf(pen.miterLimit)),
      room_(static_cast<uint32_t>(kDegrees360 / pen.greatestStep) + 8),
      capacity_(fitted(uint64_t{vertexCount} * 4 + room_ * 2)), back_(capacity_),
      points_(stack, capacity_)
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
    const MMPoint2D point = {saturated(vertex.x + offset.x), saturated(vertex.y + offset.y)};
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

// True when the outer sides are drawn out to where they meet: for miters, and instead of an arc or
// a bevel that nobody could tell from it.
bool StrokeOutline::meetsAtTip(Fixed30 dot) const
{
    const bool smooth = dot >= kSmoothCosine;
    if (pen_.joinStyle == kJoinMiter && (smooth || kOne30 + int64_t{dot} >= leastMiter_))
        return true;
    return dot >= stepCosine_ && (smooth || pen_.joinStyle == kJoinRound);
}

bool StrokeOutline::joinsRound(Fixed30 dot) const
{
    return pen_.joinStyle == kJoinRound || dot >= kSmoothCosine;
}

void StrokeOutline::putJoin(const MMPoint2D& vertex, const Polar& before, const Polar& after)
{
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
    const bool tip = meetsAtTip(dot);

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
        if (joinsRound(dot)) putArc(outer, vertex, out1, angleBetween(dot, cross));
        putAlong(outer, vertex, out2);
    }
    if (shortCut) {
        put(inner, vertex, {-meeting.x, -meeting.y});
    } else {
        putAlong(inner, vertex, opposite(out1));
        put(inner, vertex, {0, 0});
        putAlong(inner, vertex, opposite(out2));
    }
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

bool StrokeOutline::buildOpen(const MMPoint2D* points, uint32_t count)
{
    Polar edge = edgeBetween(points[0], points[1]);
    if (!putEnd(points[0], opposite(edge.direction), kRight, kLeft)) return false;
    for (uint32_t i = 1; i + 1 < count; ++i) {
        if (!reserve()) return false;
        const Polar next = edgeBetween(points[i], points[i + 1]);
        putJoin(points[i], edge, next);
        edge = next;
    }
    return putEnd(points[count - 1], edge.direction, kLeft, kRight);
}

bool StrokeOutline::buildClosed(const MMPoint2D* points, uint32_t count)
{
    --back_; // for the right side's last point once more
    Polar edge = edgeBetween(points[count - 1], points[0]);
    for (uint32_t i = 0; i < count; ++i) {
        if (!reserve()) return false;
        const Polar next = edgeBetween(points[i], points[i + 1 < count ? i + 1 : 0]);
        putJoin(points[i], edge, next);
        edge = next;
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

bool StrokeOutline::build(const MMPoint2D* points, uint32_t count, bool closed)
{
    if (!points_) return false;
    const bool built = count == 1 ? buildDot(points[0])
                       : closed   ? buildClosed(points, count)
                                  : buildOpen(points, count);
    if (built) closeGap();
    return built;
}

} // namespace Graphics2D
} // namespace KAVO
