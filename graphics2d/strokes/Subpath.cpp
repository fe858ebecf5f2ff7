// SPDX-License-Identifier: MIT
// The tangents of the curves of a subpath.
#include "graphics2d/strokes/Subpath.h"

#include "graphics2d/PathCommand.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// Sets the direction from one point to the first of the others that differs; false if all are one.
bool findDirection(const MMPoint2D& from, const MMPoint2D& a, const MMPoint2D& b,
                   const MMPoint2D& c, UnitVector& direction)
{
    const MMPoint2D& to = a != from ? a : b != from ? b : c;
    direction = polarOf(int64_t{to.x} - from.x, int64_t{to.y} - from.y).direction;
    return to != from;
}

} // namespace

CurveWalk::CurveWalk(const Subpath& subpath)
    : record_(subpath.records), end_(subpath.records + subpath.recordCount),
      command_(subpath.commands)
{
    if (record_ != end_) readCommand();
}

// Finds what the current segment was made of.
void CurveWalk::readCommand()
{
    if (command_ == nullptr) return;
    if (curvesLeft_ > 0) {
        --curvesLeft_;
        curve_ += 6;
        return;
    }
    curve_ = nullptr;
    for (;;) { // past what made no segment
        const PathCommand command = {*command_++};
        const uint32_t* items = command_;
        command_ += command.itemWords();
        if (command.wordsPerItem() == 0 || command.itemCount() == 0) continue;
        if (command.kind() == kPathCurves) {
            curve_ = items;
            curvesLeft_ = command.itemCount() - 1;
        }
        return;
    }
}

// Moves on to the segment that holds the point. False behind the last.
bool CurveWalk::seek(uint32_t point)
{
    while (record_ != end_ && point - begin_ >= record_->count) {
        begin_ += record_->count;
        start_ = record_->points[record_->count - 1];
        if (++record_ != end_) readCommand();
    }
    return record_ != end_;
}

CurveCorner CurveWalk::cornerAt(uint32_t first, uint32_t last)
{
    CurveCorner corner;
    if (command_ == nullptr) return corner;
    const uint32_t* arriving = nullptr;
    if (first > 0 && seek(first) && curve_ != nullptr) {
        arriving = curve_;
        if (begin_ + record_->count - 1 <= last) {
            const MMPoint2D* c = pathPoints(curve_);
            corner.arrives =
                findDirection(c[2], c[1], c[0], begin_ > 0 ? start_ : c[0], corner.before);
            corner.before = opposite(corner.before);
        }
    }
    if (seek(last + 1) && curve_ != nullptr) {
        if (begin_ > first) {
            const MMPoint2D* c = pathPoints(curve_);
            corner.leaves = findDirection(start_, c[0], c[1], c[2], corner.after);
        } else {
            corner.inside = curve_ == arriving;
        }
    }
    return corner;
}

CurveCorner CurveWalk::cornerAtStart(const Subpath& subpath, uint32_t tail, uint32_t last)
{
    CurveCorner corner = CurveWalk(subpath).cornerAt(0, last);
    CurveWalk walk(subpath);
    if (subpath.commands == nullptr || !walk.seek(tail) || walk.curve_ == nullptr) return corner;
    const MMPoint2D* c = pathPoints(walk.curve_);
    corner.arrives = findDirection(c[2], c[1], c[0], walk.start_, corner.before);
    corner.before = opposite(corner.before);
    return corner;
}

} // namespace Graphics2D
} // namespace KAVO
