// SPDX-License-Identifier: MIT
// A subpath to be stroked, and the tangents of its curves. Internal.
#pragma once

#include "graphics2d/MMLinkPath.h"
#include "math/UnitVector.h"

namespace KAVO {
namespace Graphics2D {

// Consecutive segments in user space.
struct Subpath {
    const MMLinkPath* records;
    uint32_t recordCount;
    bool closed;
    // The command words of an encoded path that made the records, one of them each; null when
    // nothing is known of curves.
    const uint32_t* commands = nullptr;

    uint64_t pointCount() const
    {
        uint64_t count = 0;
        for (uint32_t i = 0; i < recordCount; ++i)
            count += records[i].count;
        return count;
    }
};

// How the line meets a vertex and leaves it, where one or both of its edges are chords of curves.
struct CurveCorner {
    bool arrives = false; // a curve ends here, in the direction before
    bool leaves = false;  // a curve begins here, in the direction after
    bool inside = false;  // both edges are chords of one curve
    UnitVector before = {kOne30, 0};
    UnitVector after = {kOne30, 0};
};

// Goes along the segments of a subpath together with its command words. What the strokers need to
// know of curves is so read from the path itself, and takes no memory.
class CurveWalk {
public:
    explicit CurveWalk(const Subpath& subpath);

    // Where points first to last of the subpath, equal to each other, make one vertex: what the
    // edges from the point before and to the point after are. Vertices are asked for in order.
    CurveCorner cornerAt(uint32_t first, uint32_t last);

    // The same for the vertex at which a closed subpath begins: points tail and after, as far as
    // there are any, come back to it, and so do points 0 to last.
    static CurveCorner cornerAtStart(const Subpath& subpath, uint32_t tail, uint32_t last);

private:
    bool seek(uint32_t point);
    void readCommand();

    const MMLinkPath* record_;
    const MMLinkPath* end_;
    const uint32_t* command_;         // what comes after the current segment's command
    const uint32_t* curve_ = nullptr; // the current segment's curve, or null
    uint32_t curvesLeft_ = 0;         // behind it in the same command
    uint32_t begin_ = 0;              // points of the subpath before the current segment
    MMPoint2D start_ = {0, 0};        // the last of them
};

} // namespace Graphics2D
} // namespace KAVO
