// SPDX-License-Identifier: MIT
// Positions along a path by distance.
//
// A walk goes from item to item (a point or a whole curve), adding up the lengths of their edges,
// until the edge that holds the distance. The cursor keeps to the last item's end, and a curve is
// flattened anew for every position on it: many small steps so add up exactly as one large one.
#include "graphics2d/MMContext2D.h"
#include "graphics2d/paths/PathDecoder.h"
#include "graphics2d/strokes/PathEdge.h"
#include "math/FixedMath.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// Sets the cursor before the first point of the path. What comes before it draws nothing: empty
// commands and curves that have no point to start from.
void startWalk(MMPathPos& pos)
{
    pos = {pos.path, nullptr, {0, 0}, {0, 0}, 0, 0, 0, 0, {0, 0}, 0};
    const uint32_t* word = pos.path + 1;
    uint32_t subpathsLeft = subpathCountOf(*word++);
    for (; subpathsLeft > 0; word += 1 + PathCommand{*word}.itemWords()) {
        const PathCommand command = {*word};
        if (command.kind() == kPathPoints && command.itemCount() > 0) break;
        if (command.endsSubpath()) --subpathsLeft;
    }
    pos.command = word;
    pos.subpathsLeft = static_cast<int16_t>(subpathsLeft); // the low 16 bits: up to 65,535
}

class PathWalk {
public:
    PathWalk(MMContext2D& context, MMPathPos& pos, Fixed distance)
        : context_(context), pos_(pos), distance_(distance), command_(pos.command),
          index_(pos.item), at_(pos.previous), length_(pos.edgeWalked), insideSubpath_(pos.item > 0)
    {
    }

    // Walks to the distance or to the end of the path. False when the scratch stack is exhausted.
    bool run()
    {
        while (pos_.subpathsLeft != 0 && !arrived_) {
            if (!walkCommand({*command_})) return false;
        }
        return true;
    }

    MMPoint2D direction() const { return edge_.direction(); } // where the walk is

private:
    bool walkCommand(PathCommand command)
    {
        const uint32_t* words = command_ + 1;
        const uint32_t items = command.wordsPerItem() > 0 ? command.itemCount() : 0;
        for (; index_ < items && !arrived_; ++index_) {
            const MMPoint2D* points = pathPoints(words + index_ * command.wordsPerItem());
            if (command.kind() == kPathPoints)
                visit(*points);
            else if (!visitCurve(points))
                return false;
            if (!arrived_) moveCursor(index_ + 1);
        }
        if (arrived_) return true;
        if (command.endsSubpath()) {
            if (command.closes() && insideSubpath_) walkEdges(at_, pos_.subpathStart);
            if (arrived_) return true;
        }
        command_ = words + command.itemWords();
        index_ = 0;
        if (command.endsSubpath()) {
            insideSubpath_ = false;
            pos_.subpathsLeft = static_cast<int16_t>(pos_.subpathsLeft - 1);
            moveCursor(0);
        }
        return true;
    }

    // An index of 0 stands for the start of a subpath.
    void moveCursor(uint32_t index)
    {
        pos_.command = command_;
        pos_.itemIndex = static_cast<int16_t>(index);
        pos_.item = index;
        pos_.previous = at_;
        pos_.edgeWalked = length_;
    }

    bool visitCurve(const MMPoint2D* points)
    {
        CurveBuffers buffers(context_, 1);
        if (!buffers) return false;
        const MMLinkPath curve = buffers.flatten(at_, points);
        for (uint32_t i = 0; i < curve.count && !arrived_; ++i)
            visit(curve.points[i]);
        return curve.count > 0;
    }

    void visit(const MMPoint2D& point)
    {
        if (insideSubpath_) {
            walkEdges(at_, point);
        } else {
            insideSubpath_ = true;
            pos_.subpathStart = point;
            if (length_ == 0) pos_.current = point;
        }
        at_ = point;
    }

    void walkEdges(MMPoint2D from, const MMPoint2D& to)
    {
        while (from != to && !arrived_) {
            edge_ = PathEdge::toward(from, to);
            from = edge_.end;
            walkEdge();
        }
    }

    void walkEdge()
    {
        const Fixed along = distance_ - length_;
        arrived_ = along <= edge_.length;
        length_ = arrived_ ? distance_ : length_ + edge_.length;
        pos_.current = edge_.end;
        if (along < edge_.length) {
            const MMPoint2D unit = edge_.direction();
            pos_.current = {wrapAdd(edge_.start.x, fixMul(unit.x, along)),
                            wrapAdd(edge_.start.y, fixMul(unit.y, along))};
        }
        pos_.walked = length_;
    }

    MMContext2D& context_;
    MMPathPos& pos_;
    const Fixed distance_;
    const uint32_t* command_;
    uint32_t index_; // items of the command that lie behind
    MMPoint2D at_;   // the last point
    Fixed length_;   // from the start of the path to the last point; at most distance_
    bool insideSubpath_;
    bool arrived_ = false;
    PathEdge edge_ = {};
};

} // namespace

void MMContext2D::getPathPos(MMPathPos& pos, Fixed distance, Degrees* result)
{
    if (pos.path == nullptr) {
        if (result != nullptr) *result = 0;
        return;
    }
    pointStep = 1;
    if (distance < 0) distance = 0;
    MMPathPos moved = pos; // taken over only when the walk succeeds
    if (moved.subpathsLeft == 0 || distance < moved.walked) startWalk(moved);
    PathWalk walk(*this, moved, distance);
    if (!walk.run()) {
        outOfMemory |= kScratchExhausted;
        return;
    }
    pos = moved;
    if (result != nullptr) *result = fixATan(walk.direction().x, walk.direction().y);
}

} // namespace Graphics2D
} // namespace KAVO
