// SPDX-License-Identifier: MIT
// Cutting a subpath into dashes.
//
// One walk over the subpath's edges cuts them at the boundaries of the dash pattern. What lies in
// an "on" entry is gathered in a scratch buffer and stroked as an open polyline of its own; the
// buffer never holds more than all vertices and the two ends of a dash.
#include "graphics2d/strokes/DashArray.h"

#include "graphics2d/BoundsUnion.h"
#include "graphics2d/OutOfMemory.h"
#include "graphics2d/strokes/PathEdge.h"
#include "math/FixedMath.h"
#include "math/WideMath.h"
#include "memory/ScratchArray.h"

#include <algorithm>
#include <utility>

namespace KAVO {
namespace Graphics2D {

namespace {

// A pattern that cuts a subpath into more pieces, dashes and gaps counted, is drawn as a plain
// stroke: the work would be out of proportion to anything that can be seen of it.
constexpr uint64_t kMaxPieces = 65535;

// A subpath across its records.
struct Subpath {
    const MMLinkPath* records;
    uint32_t recordCount;
    bool closed;

    uint64_t pointCount() const
    {
        uint64_t count = 0;
        for (uint32_t i = 0; i < recordCount; ++i)
            count += records[i].count;
        return count;
    }
};

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

// The context's dash lengths, on and off alternately.
class DashPattern {
public:
    explicit DashPattern(const MMContext2D& context)
        : lengths_(context.dashArray), count_(context.dashArray != nullptr ? context.dashCount : 0)
    {
        for (uint32_t i = 0; i < count_; ++i) {
            if (lengths_[i] < 0) {
                period_ = 0;
                return;
            }
            period_ += static_cast<uint32_t>(lengths_[i]);
        }
    }

    // False when it is empty, has a negative entry or no length at all.
    bool isDrawable() const { return period_ > 0; }

    uint32_t count() const { return count_; }
    uint64_t period() const { return period_; }
    Fixed operator[](uint32_t index) const { return lengths_[index]; }

private:
    const Fixed* lengths_;
    uint32_t count_;
    uint64_t period_ = 0;
};

// Where in the pattern a walk is.
class DashPhase {
public:
    // The phase at the start of a subpath.
    DashPhase(const DashPattern& pattern, Fixed dashOffset) : pattern_(pattern)
    {
        // Patterns of odd length swap on and off from one period to the next.
        const int64_t cycle =
            static_cast<int64_t>(pattern.period()) * (pattern.count() % 2 == 0 ? 1 : 2);
        int64_t offset = dashOffset % cycle;
        if (dashOffset < 0) {
            // Backward from the start, an odd pattern begins with its last entry on. Whole cycles
            // back are one cycle: they end in the state of going back, too.
            if (offset == 0) offset = -cycle;
            index_ = pattern.count();
            on_ = pattern.count() % 2 == 0;
            do {
                index_ = index_ == 0 ? pattern.count() - 1 : index_ - 1;
                offset += pattern[index_];
                on_ = !on_;
            } while (offset < 0);
        } else {
            while (offset >= pattern[index_]) {
                offset -= pattern[index_];
                advance();
            }
        }
        left_ = static_cast<Fixed>(pattern[index_] - offset);
    }

    bool isOn() const { return on_; }
    Fixed left() const { return left_; } // of the current entry

    void consume(Fixed length) { left_ -= length; }

    void advance()
    {
        index_ = index_ + 1 == pattern_.count() ? 0 : index_ + 1;
        on_ = !on_;
        left_ = pattern_[index_];
    }

    // Entries that a walk of the given length from here touches; any number above kMaxPieces when
    // they are more than that.
    uint64_t piecesWithin(uint64_t length) const
    {
        if (length < static_cast<uint32_t>(left_)) return 1;
        const uint64_t rest = length - static_cast<uint32_t>(left_);
        const uint64_t periods = rest / pattern_.period();
        if (periods > kMaxPieces) return periods; // too many; their product may not fit
        DashPhase last = *this;
        last.advance();
        uint64_t pieces = 2 + periods * pattern_.count();
        for (uint64_t offset = rest % pattern_.period();
             offset >= static_cast<uint32_t>(last.left_); ++pieces) {
            offset -= static_cast<uint32_t>(last.left_);
            last.advance();
        }
        return pieces;
    }

private:
    const DashPattern& pattern_;
    uint32_t index_ = 0;
    bool on_ = true;
    Fixed left_ = 0;
};

// Walks a subpath's edges, gathers the points of the current piece and strokes the dashes.
class DashPen {
public:
    DashPen(MMContext2D& context, const DevicePen& pen, uint64_t pieces, MMPoint2D* buffer,
            const DashPhase& phase, const MMPoint2D& start)
        : context_(context), pen_(pen), phase_(phase), at_(start), points_(buffer)
    {
        pen_.step = pen.stepFor(pieces);
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

    void finish()
    {
        if (phase_.isOn()) strokePiece();
        if (context_.accumulateBounds != 0) bounds_.storeTo(context_);
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
                const MMPoint2D boundary = {wrapSub(edge.end.x, fixMul(unit.x, remaining)),
                                            wrapSub(edge.end.y, fixMul(unit.y, remaining))};
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

    void strokePiece()
    {
        const MMLinkPath piece = {points_, count_};
        // A dash without length is a dot in the direction of its edge.
        if (points_[0] == points_[count_ - 1])
            pen_.direction = polarOf(along_.x, along_.y).direction;
        strokeSubpath(context_, pen_, &piece, 1, false);
        bounds_.addBoundsOf(context_);
    }

    MMContext2D& context_;
    DevicePen pen_;
    DashPhase phase_;
    MMPoint2D at_;
    MMPoint2D along_ = {0, 0}; // the current edge
    MMPoint2D* points_;
    uint32_t count_ = 0;
    BoundsUnion bounds_;
};

// As MMContext2D::drawDashArray.
void dashSubpath(MMContext2D& context, const DevicePen& pen, const MMLinkPath* records,
                 uint32_t recordCount, bool closed)
{
    BoundsUnion().storeTo(context); // what a subpath without a dash leaves
    const Subpath subpath = {records, recordCount, closed};
    const uint64_t pointCount = subpath.pointCount();
    if (pointCount == 0) return;
    if (recordCount == 1 && pointCount == 1) {
        // A lone point has nothing to cut. Its words stay counted on the scratch stack: the stack's
        // counts are public, and callers who compare them from one drawing to the next count these
        // in.
        void* room = context.scratchStack.Alloc(scratchWordsFor<MMPoint2D>(1));
        if (room == nullptr) noteOutOfMemory(context);
        context.scratchStack.Abandon(room);
        return;
    }

    const DashPattern pattern(context);
    if (!pattern.isDrawable()) {
        strokeSubpath(context, pen, records, recordCount, closed);
        return;
    }
    const DashPhase start(pattern, context.dashOffset);
    uint64_t pieces = start.piecesWithin(lengthBoundOf(subpath));
    if (pieces > kMaxPieces) pieces = start.piecesWithin(lengthOf(subpath));
    if (pieces > kMaxPieces) {
        strokeSubpath(context, pen, records, recordCount, closed);
        return;
    }

    // Beside the vertices, a piece holds the closing point and a boundary.
    const uint64_t room = std::min<uint64_t>(pointCount + 2, UINT32_MAX);
    ScratchArray<MMPoint2D> buffer(context.scratchStack, static_cast<uint32_t>(room));
    if (!buffer) {
        context.outOfMemory |= kScratchExhausted;
        return;
    }
    PointWalk walk(subpath);
    DashPen dashPen(context, pen, pieces, buffer.data(), start, walk.at());
    while (walk.advance())
        dashPen.walkTo(walk.at());
    dashPen.finish();
}

} // namespace

void strokeOrDashSubpath(MMContext2D& context, const DevicePen& pen, const MMLinkPath* records,
                         uint32_t recordCount, bool closed)
{
    if (context.dashArray != nullptr)
        dashSubpath(context, pen, records, recordCount, closed);
    else
        strokeSubpath(context, pen, records, recordCount, closed);
}

void MMContext2D::drawDashArray(MMLinkPath* records, uint16_t segmentCount, uint8_t closed)
{
    pointStep = 1;
    dashSubpath(*this, DevicePen(*this), records, readableRecords(records, segmentCount),
                (closed & 1) != 0);
}

} // namespace Graphics2D
} // namespace KAVO
