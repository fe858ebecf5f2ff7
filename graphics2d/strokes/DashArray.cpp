// SPDX-License-Identifier: MIT
// Cutting a subpath into dashes.
//
// One walk over the subpath's edges cuts them at the boundaries of the dash pattern. What lies in
// an "on" entry is gathered in a scratch buffer and stroked as an open polyline of its own; the
// buffer never holds more than all vertices and the two ends of a dash. By the refined rules the
// outlines of all dashes are filled as one shape. A dash that cannot be seen is only built where
// the bounds depend on it. Dashes know nothing of curves: their joins and caps follow the chords.
#include "graphics2d/strokes/DashArray.h"

#include "graphics2d/OutOfMemory.h"
#include "graphics2d/raster/ClipWindow.h"
#include "graphics2d/strokes/DashPattern.h"
#include "graphics2d/strokes/GatheredOutlines.h"
#include "graphics2d/strokes/PathEdge.h"
#include "math/FixedMath.h"
#include "math/Points.h"
#include "memory/ScratchArray.h"

#include <algorithm>
#include <utility>

namespace KAVO {
namespace Graphics2D {

namespace {

// The points of a subpath that has any, from the first on; when it is closed, that comes last too.
class PointWalk {
public:
    explicit PointWalk(const Subpath& subpath)
        : record_(subpath.records), end_(subpath.records + subpath.recordCount),
          comesBack_(subpath.closed)
    {
        advance();
        first_ = at_;
    }

    const MMPoint2D& at() const { return at_; }

    // False at the end.
    bool advance()
    {
        while (record_ != end_ && index_ == record_->count) {
            ++record_;
            index_ = 0;
        }
        if (record_ != end_) {
            at_ = record_->points[index_++];
            return true;
        }
        at_ = first_;
        return std::exchange(comesBack_, false);
    }

private:
    const MMLinkPath* record_;
    const MMLinkPath* end_;
    uint32_t index_ = 0;
    bool comesBack_;
    MMPoint2D first_;
    MMPoint2D at_;
};

// At least the length of a subpath, at most 1.5 times it, without a root for every edge.
uint64_t lengthBoundOf(const Subpath& subpath)
{
    PointWalk walk(subpath);
    uint64_t length = 0;
    for (MMPoint2D from = walk.at(); walk.advance(); from = walk.at()) {
        length += static_cast<uint64_t>(absolute(int64_t{walk.at().x} - from.x) +
                                        absolute(int64_t{walk.at().y} - from.y));
    }
    return length;
}

uint64_t lengthOf(const Subpath& subpath)
{
    PointWalk walk(subpath);
    uint64_t length = 0;
    for (MMPoint2D from = walk.at(); walk.advance();) {
        while (from != walk.at()) {
            const PathEdge edge = PathEdge::toward(from, walk.at());
            length += static_cast<uint32_t>(edge.length);
            from = edge.end;
        }
    }
    return length;
}

// Each of two buffers of the given size holds the points of any piece. Three hold those of two
// pieces when the dash that runs over the start of a closed subpath is to be joined.
struct DashBuffers {
    MMPoint2D* points; // of all, one after the other
    uint32_t room;     // of each
    bool joinsAtStart;
};

// Walks a subpath's edges, gathers the points of the current piece and strokes the dashes.
class DashPen {
public:
    DashPen(MMContext2D& context, const DevicePen& pen, const DashBuffers& buffers,
            const DashPhase& phase, const MMPoint2D& start)
        : context_(context), window_(context), pen_(pen), reach_(pen.reach(context)), phase_(phase),
          at_(start), points_(buffers.points), unseen_(buffers.points + buffers.room),
          first_(buffers.joinsAtStart ? buffers.points + 2 * buffers.room : nullptr),
          awaitsFirst_(buffers.joinsAtStart && phase.isOn())
    {
        restartAt(start);
    }

    void walkTo(const MMPoint2D& to)
    {
        while (at_ != to) {
            const PathEdge edge = PathEdge::toward(at_, to);
            walkEdge(edge);
            at_ = edge.end;
        }
        // Where a piece has just begun on the vertex itself, the vertex is already there.
        if (points_[count_ - 1] != to) points_[count_++] = to;
    }

    // Returns the bounds of the last dash, or of all of them when the context accumulates.
    BoundsUnion finish()
    {
        if (awaitsFirst_)
            stroke(points_, count_, pen_.direction, true); // all of it is one dash
        else if (phase_.isOn() || firstCount_ != 0)
            strokeLastPiece();
        if (unseenCount_ != 0) stroke(unseen_, unseenCount_, unseenDirection_);
        return context_.accumulateBounds != 0 ? all_ : last_;
    }

private:
    void walkEdge(const PathEdge& edge)
    {
        along_ = edge.vector();
        Fixed remaining = edge.length;
        if (remaining >= phase_.left()) { // a boundary exactly on the end belongs to this edge
            const MMPoint2D unit = edge.direction();
            do {
                remaining -= phase_.left();
                MMPoint2D boundary = {wrapSub(edge.end.x, fixMul(unit.x, remaining)),
                                      wrapSub(edge.end.y, fixMul(unit.y, remaining))};
                if (remaining == edge.length) boundary = edge.start; // of a dot at the start
                points_[count_++] = boundary;
                if (phase_.isOn()) strokePiece();
                restartAt(boundary);
                phase_.advance();
            } while (remaining >= phase_.left());
        }
        phase_.consume(remaining);
    }

    void restartAt(const MMPoint2D& point)
    {
        points_[0] = point;
        count_ = 1;
    }

    // The dash at the end, with the one at the start behind it, or that one alone.
    void strokeLastPiece()
    {
        if (!phase_.isOn()) {
            points_ = first_;
            count_ = firstCount_;
            along_ = firstAlong_;
        } else if (firstCount_ != 0) {
            const MMPoint2D* end = std::copy(first_ + 1, first_ + firstCount_, points_ + count_);
            count_ = static_cast<uint32_t>(end - points_);
        }
        strokePiece();
    }

    void strokePiece()
    {
        if (awaitsFirst_) {
            awaitsFirst_ = false;
            std::swap(points_, first_);
            firstCount_ = count_;
            firstAlong_ = along_;
            return;
        }
        // A dash without length is a dot in the direction of its edge.
        const UnitVector direction = points_[0] == points_[count_ - 1]
                                         ? polarOf(along_.x, along_.y).direction
                                         : pen_.direction;
        unseenCount_ = 0;
        if (canBeSeen()) {
            stroke(points_, count_, direction);
        } else if (context_.accumulateBounds == 0) { // the bounds are this one's if it is the last
            std::swap(points_, unseen_);
            unseenCount_ = count_;
            unseenDirection_ = direction;
        }
    }

    // True when what the piece covers can touch the clip rectangle, or widen the bounds of all.
    bool canBeSeen() const
    {
        BoundsUnion line;
        for (uint32_t i = 0; i < count_; ++i)
            line.addPoint(mappedSaturated(context_.transform, points_[i]));
        const int64_t minX = line.minX - reach_;
        const int64_t minY = line.minY - reach_;
        const int64_t maxX = line.maxX + reach_;
        const int64_t maxY = line.maxY + reach_;
        if (window_.sidesOf(minX, minY, maxX, maxY) == 0) return true;
        return context_.accumulateBounds != 0 &&
               (minX < all_.minX || minY < all_.minY || maxX > all_.maxX || maxY > all_.maxY);
    }

    void stroke(MMPoint2D* points, uint32_t count, const UnitVector& direction, bool closed = false)
    {
        const MMLinkPath record = {points, count};
        const Subpath piece = {&record, 1, closed};
        pen_.direction = direction;
        GatheredOutlines* const gathered = pen_.gathered;
        last_ = strokeSubpath(context_, pen_, piece);
        all_.add(last_);
        if (gathered != nullptr && !gathered->hasAll() && gathered->grow())
            strokeSubpath(context_, pen_, piece);
    }

    MMContext2D& context_;
    const ClipWindow window_;
    DevicePen pen_;
    const int64_t reach_;
    DashPhase phase_;
    MMPoint2D at_;
    MMPoint2D along_ = {0, 0}; // the current edge
    MMPoint2D* points_;
    uint32_t count_ = 0;
    MMPoint2D* unseen_; // the last dash, while it has not been built
    uint32_t unseenCount_ = 0;
    UnitVector unseenDirection_ = {kOne30, 0};
    MMPoint2D* first_; // the dash at the start, while it waits for the one at the end
    uint32_t firstCount_ = 0;
    MMPoint2D firstAlong_ = {0, 0};
    bool awaitsFirst_;
    BoundsUnion last_;
    BoundsUnion all_;
};

[[gnu::noinline]] BoundsUnion strokeDashes(MMContext2D& context, const DevicePen& pen,
                                           const DashBuffers& buffers, const DashPhase& start,
                                           const Subpath& subpath)
{
    PointWalk walk(subpath);
    DashPen dashPen(context, pen, buffers, start, walk.at());
    while (walk.advance())
        dashPen.walkTo(walk.at());
    return dashPen.finish();
}

// As MMContext2D::drawDashArray.
[[gnu::noinline]] BoundsUnion dashSubpath(MMContext2D& context, const DevicePen& pen,
                                          const Subpath& subpath)
{
    const uint64_t pointCount = subpath.pointCount();
    if (pointCount == 0) return {};
    if (subpath.recordCount == 1 && pointCount == 1) {
        // A lone point has nothing to cut. Its words stay counted on the scratch stack: the stack's
        // counts are public, and callers who compare them from one drawing to the next count these
        // in.
        void* room = context.scratchStack.Alloc(scratchWordsFor<MMPoint2D>(1));
        if (room == nullptr) noteOutOfMemory(context);
        context.scratchStack.Abandon(room);
        return {};
    }

    const DashPattern pattern(context);
    if (!pattern.isDrawable()) return strokeSubpath(context, pen, subpath);
    const DashPhase start(pattern, context.dashOffset, context.refined != 0);
    uint64_t pieces = start.piecesWithin(lengthBoundOf(subpath));
    if (pieces > kMaxPieces) pieces = start.piecesWithin(lengthOf(subpath));
    if (pieces > kMaxPieces) return strokeSubpath(context, pen, subpath);

    // Beside the vertices, a piece holds the closing point and a boundary.
    const bool joins = subpath.closed && context.refined != 0;
    const uint64_t wanted = (pointCount + 2) * (joins ? 2 : 1);
    const uint32_t room = static_cast<uint32_t>(std::min<uint64_t>(wanted, UINT32_MAX / 3));
    ScratchArray<MMPoint2D> buffers(context.scratchStack, (joins ? 3 : 2) * room);
    if (!buffers) {
        noteOutOfMemory(context);
        return {};
    }
    DevicePen dashing = pen;
    dashing.step = pen.stepFor(pieces);
    const DashBuffers dashes = {buffers.data(), room, joins};
    if (context.refined != 0) {
        // A dash has one outline, and without anti-aliasing up to a pixel more.
        GatheredOutlines gathered(context, static_cast<uint32_t>(pieces + 2) * 2);
        dashing.gathered = &gathered;
        if (gathered) {
            const BoundsUnion bounds = strokeDashes(context, dashing, dashes, start, subpath);
            if (gathered) {
                gathered.fill();
                return bounds;
            }
        }
        dashing.gathered = nullptr;
    }
    return strokeDashes(context, dashing, dashes, start, subpath);
}

} // namespace

BoundsUnion strokeOrDashSubpath(MMContext2D& context, const DevicePen& pen, const Subpath& subpath)
{
    return context.dashArray != nullptr ? dashSubpath(context, pen, subpath)
                                        : strokeSubpath(context, pen, subpath);
}

void MMContext2D::drawDashArray(MMLinkPath* records, uint16_t segmentCount, uint8_t closed)
{
    pointStep = 1;
    const uint32_t count = readableRecords(records, segmentCount);
    dashSubpath(*this, DevicePen(*this), {records, count, (closed & 1) != 0}).storeTo(*this);
}

} // namespace Graphics2D
} // namespace KAVO
