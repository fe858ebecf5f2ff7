// Cutting a subpath into dashes.
//
// One walk over the subpath's edges cuts them at the boundaries of the dash pattern. What lies in
// an "on" entry is gathered in a scratch buffer and stroked as an open polyline of its own; the
// buffer never holds more than all vertices and the two ends of a dash.
#include "graphics2d/BoundsUnion.h"
#include "graphics2d/PathEdge.h"
#include "graphics2d/Stroker.h"
#include "memory/ScratchArray.h"

#include <algorithm>

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

    // Calls walkTo(point) for every point after the first, and for the first again when closed.
    template <class WalkTo>
    void forEachTarget(WalkTo walkTo) const
    {
        const MMPoint2D* first = nullptr;
        for (uint32_t i = 0; i < recordCount; ++i) {
            for (uint32_t j = 0; j < records[i].count; ++j) {
                const MMPoint2D* point = records[i].points + j;
                if (first == nullptr)
                    first = point;
                else
                    walkTo(*point);
            }
        }
        if (closed && first != nullptr) walkTo(*first);
    }

    // Only for a subpath with points.
    const MMPoint2D& firstPoint() const
    {
        const MMLinkPath* record = records;
        while (record->count == 0)
            ++record;
        return *record->points;
    }
};

// Calls take(edge) for every edge with a length on the way from one point to another.
template <class Take>
void forEachEdge(MMPoint2D from, const MMPoint2D& to, Take take)
{
    while (from != to) {
        const PathEdge edge = PathEdge::toward(from, to);
        take(edge);
        from = edge.end;
    }
}

uint64_t lengthOf(const Subpath& subpath)
{
    uint64_t length = 0;
    MMPoint2D at = subpath.firstPoint();
    subpath.forEachTarget([&](const MMPoint2D& to) {
        forEachEdge(at, to,
                    [&](const PathEdge& edge) { length += static_cast<uint32_t>(edge.length); });
        at = to;
    });
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

    // Entries that a walk of the given length from here touches.
    uint64_t piecesWithin(uint64_t length) const
    {
        if (length < static_cast<uint32_t>(left_)) return 1;
        const uint64_t rest = length - static_cast<uint32_t>(left_);
        const uint64_t periods = rest / pattern_.period();
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
    DashPen(MMContext2D& context, MMPoint2D* buffer, const DashPhase& phase, const MMPoint2D& start)
        : context_(context), phase_(phase), at_(start), points_(buffer)
    {
        restartAt(start);
    }

    void walkTo(const MMPoint2D& to)
    {
        forEachEdge(at_, to, [this](const PathEdge& edge) { walkEdge(edge); });
        // Where a piece has just begun on the vertex itself, the vertex is already there.
        if (points_[count_ - 1] != to) points_[count_++] = to;
        at_ = to;
    }

    void finish()
    {
        if (phase_.isOn()) strokePiece();
        if (context_.accumulateBounds != 0) bounds_.storeTo(context_);
    }

private:
    void walkEdge(const PathEdge& edge)
    {
        // A boundary exactly on the end belongs to this edge.
        Fixed remaining = edge.length;
        while (remaining >= phase_.left()) {
            remaining -= phase_.left();
            const MMPoint2D boundary = edge.beforeEnd(remaining);
            points_[count_++] = boundary;
            if (phase_.isOn()) strokePiece();
            restartAt(boundary);
            phase_.advance();
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
        strokeSubpath(context_, &piece, 1, false);
        bounds_.addBoundsOf(context_);
    }

    MMContext2D& context_;
    DashPhase phase_;
    MMPoint2D at_;
    MMPoint2D* points_;
    uint32_t count_ = 0;
    BoundsUnion bounds_;
};

} // namespace

void dashSubpath(MMContext2D& context, const MMLinkPath* records, uint32_t recordCount, bool closed)
{
    BoundsUnion().storeTo(context); // what a subpath without a dash leaves
    const Subpath subpath = {records, recordCount, closed};
    const uint64_t pointCount = subpath.pointCount();
    if (pointCount == 0) return;
    if (recordCount == 1 && pointCount == 1) {
        // A lone point has nothing to cut. Its block is meant to stay on the scratch stack.
        if (context.scratchStack.Alloc(scratchWordsFor<MMPoint2D>(1)) == nullptr)
            context.outOfMemory |= kScratchExhausted;
        return;
    }

    const DashPattern pattern(context);
    if (!pattern.isDrawable()) {
        strokeSubpath(context, records, recordCount, closed);
        return;
    }
    const DashPhase start(pattern, context.dashOffset);
    if (start.piecesWithin(lengthOf(subpath)) > kMaxPieces) {
        strokeSubpath(context, records, recordCount, closed);
        return;
    }

    // Beside the vertices, a piece holds the closing point and a boundary.
    const uint64_t room = std::min<uint64_t>(pointCount + 2, UINT32_MAX);
    ScratchArray<MMPoint2D> buffer(context.scratchStack, static_cast<uint32_t>(room));
    if (!buffer) {
        context.outOfMemory |= kScratchExhausted;
        return;
    }
    DashPen pen(context, buffer.data(), start, subpath.firstPoint());
    subpath.forEachTarget([&pen](const MMPoint2D& to) { pen.walkTo(to); });
    pen.finish();
}

void MMContext2D::drawDashArray(MMLinkPath* records, uint16_t segmentCount, uint8_t closed)
{
    pointStep = 1;
    dashSubpath(*this, records, segmentCount, (closed & 1) != 0);
}

} // namespace Graphics2D
} // namespace KAVO
