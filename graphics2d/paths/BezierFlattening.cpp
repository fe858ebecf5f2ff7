// SPDX-License-Identifier: MIT
// Flattening of cubic Bezier curves.
//
// A curve is halved at its parameter's middle until each piece is flat by the rules of
// CurveHalving.h, first halves first, with the second halves waiting on a short stack.
//
// What cannot be seen is flattened like the rest, for the bounds, but leaves no points behind.
#include "graphics2d/paths/BezierFlattening.h"

#include "graphics2d/MMContext2D.h"
#include "graphics2d/paths/CurveHalving.h"

#include <cstddef>

namespace KAVO {
namespace Graphics2D {

namespace {

// Halving this often everywhere makes kMaxCurvePoints pieces.
constexpr uint32_t kEvenLevels = 10;
static_assert(1u << kEvenLevels == kMaxCurvePoints, "a point per piece");

// Takes the points of a curve. Halving, with all that it asks, is compiled once for all sinks.
class PointSink {
public:
    virtual void start() = 0; // before the first point, also of a second attempt
    virtual void take(const MMPoint2D& point) = 0;

protected:
    ~PointSink() = default;
};

// Writes all points, as flattenBezier.
class PointWriter final : public PointSink {
public:
    PointWriter(MMPoint2D* out, uint32_t capacity, int32_t step)
        : out_(out), capacity_(capacity), step_(step)
    {
    }

    void start() override { written_ = 0; }
    void take(const MMPoint2D& point) override
    {
        if (written_ < capacity_) out_[static_cast<ptrdiff_t>(written_) * step_] = point;
        ++written_;
    }

private:
    MMPoint2D* out_;
    uint32_t capacity_;
    int32_t step_;
    uint32_t written_ = 0;
};

// Keeps the points that are needed for what can be seen.
class NeededPoints final : public PointSink {
public:
    NeededPoints(const Matrix2D& transform, const ClipWindow& window, const MMPoint2D& curveStart,
                 MMPoint2D* out, uint32_t capacity, BoundsUnion& bounds)
        : transform_(transform), window_(window), curveStart_(curveStart), out_(out),
          capacity_(capacity), bounds_(bounds)
    {
    }

    void start() override
    {
        count_ = 0;
        last_ = window_.sidesOf(onDevice(curveStart_));
        before_ = 0;
    }
    void take(const MMPoint2D& point) override
    {
        const MMPoint2D device = onDevice(point);
        bounds_.addPoint(device);
        const ClipWindow::Sides sides = window_.sidesOf(device);
        if (count_ == 0 || (sides & last_ & before_) == 0) {
            ++count_;
            before_ = last_;
        }
        last_ = sides;
        if (count_ <= capacity_) out_[count_ - 1] = point;
    }

    uint32_t count() const { return count_; }

private:
    MMPoint2D onDevice(MMPoint2D p) const
    {
        transform_.transform(&p, &p, 1);
        return p;
    }

    const Matrix2D& transform_;
    const ClipWindow& window_;
    const MMPoint2D& curveStart_;
    MMPoint2D* out_;
    uint32_t capacity_;
    BoundsUnion& bounds_; // of all points
    uint32_t count_ = 0;
    ClipWindow::Sides last_ = 0;
    ClipWindow::Sides before_ = 0;
};

// Halves a curve and hands its points to the sink. Returns how many they are, or
// kMaxCurvePoints + 1 as soon as there are more than that.
template <class Rule>
[[gnu::noinline]] uint32_t subdivide(const Rule& rule, typename Rule::Piece whole,
                                     uint32_t maxLevel, PointSink& sink)
{
    sink.start();
    typename Rule::Piece pieces[Rule::kMaxPending + 1]; // and the one to be halved
    typename Rule::Piece* piece = pieces;               // those before it wait
    *piece = whole;
    uint32_t count = 0;
    for (;;) {
        const bool mayGoOn = piece < pieces + Rule::kMaxPending && piece->level < maxLevel;
        if (mayGoOn && !rule.halve(*piece, piece[1])) {
            ++piece;
            continue;
        }
        if (++count > kMaxCurvePoints) return count;
        sink.take(piece->curve.end);
        if (piece == pieces) return count;
        --piece;
    }
}

// The stack of second halves bounds the first halves only: halving that goes on toward the end of a
// curve can still make too many points of a vast one. It then gets even pieces instead.
template <class Rule>
uint32_t subdivideBounded(Rule rule, const BezierCurve& curve, PointSink& sink)
{
    const typename Rule::Piece whole = rule.whole(curve);
    const uint32_t count = subdivide(rule, whole, UINT32_MAX, sink);
    if (count <= kMaxCurvePoints) return count;
    return subdivide(rule, whole, kEvenLevels, sink);
}

uint32_t subdivideBounded(const CurveRule& rule, const BezierCurve& curve, PointSink& sink)
{
    return rule.refined ? subdivideBounded(RefinedRule(rule.transform), curve, sink)
                        : subdivideBounded(ClassicRule(rule.transform), curve, sink);
}

} // namespace

uint32_t flattenBezier(const CurveRule& rule, const BezierCurve& curve, MMPoint2D* out,
                       uint32_t capacity, int32_t step)
{
    PointWriter writer(out, capacity, step);
    return subdivideBounded(rule, curve, writer);
}

// True when the whole curve may be seen, and where the mapping of points could wrap. A curve within
// a row is kept too: the shape may be one that counts as thin.
bool VisibleCurves::needsAllOf(const BezierCurve& curve) const
{
    BoundsUnion box;
    for (const MMPoint2D& p : {curve.start, curve.control1, curve.control2, curve.end})
        box.addPoint(mappedSaturated(rule_.transform, p));
    constexpr Fixed kFar = 0x7FFF0000;
    if (box.minX < -kFar || box.minY < -kFar || box.maxX > kFar || box.maxY > kFar) return true;
    if (int64_t{box.maxY} - box.minY < 2 * kFixedOne) return true;
    return window_.contains(box.minX, box.minY, box.maxX, box.maxY);
}

uint32_t VisibleCurves::flatten(const BezierCurve& curve, MMPoint2D* out, uint32_t capacity)
{
    if (needsAllOf(curve)) return flattenBezier(rule_, curve, out, capacity);
    NeededPoints needed(rule_.transform, window_, curve.start, out, capacity, bounds_);
    const uint32_t count = subdivideBounded(rule_, curve, needed);
    if (needed.count() <= capacity) leftOut_ += count - needed.count(); // else it comes again
    return needed.count();
}

int32_t MMContext2D::getBezierPts(MMPoint2D* out, MMPoint2D start, MMPoint2D control1,
                                  MMPoint2D control2, MMPoint2D end)
{
    if (out == nullptr) return 0;
    const BezierCurve curve = {start, control1, control2, end};
    const uint32_t count =
        flattenBezier(curveRuleOf(*this), curve, out, kMaxCurvePoints, pointStep);
    return wrapMul(static_cast<int32_t>(count), pointStep);
}

} // namespace Graphics2D
} // namespace KAVO
