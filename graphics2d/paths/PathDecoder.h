// SPDX-License-Identifier: MIT
// From the words of an encoded path to its points. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "graphics2d/PathCommand.h"
#include "graphics2d/paths/BezierFlattening.h"
#include "memory/ScratchArray.h"

namespace KAVO {
namespace Graphics2D {

// The flattened curves of one path: a scratch block for each, given back in reverse order.
class CurveBuffers {
public:
    CurveBuffers(MMContext2D& context, uint32_t curveCount)
        : context_(context), blocks_(context.scratchStack, curveCount)
    {
    }
    ~CurveBuffers();
    CurveBuffers(const CurveBuffers&) = delete;
    CurveBuffers& operator=(const CurveBuffers&) = delete;

    explicit operator bool() const { return static_cast<bool>(blocks_); }

    // Flattens the curve from start through the three points behind it, for what can be seen of it
    // only when visible is not null. Returns the points, none when the stack is exhausted.
    MMLinkPath flatten(const MMPoint2D& start, const MMPoint2D* curve,
                       VisibleCurves* visible = nullptr);

private:
    MMContext2D& context_;
    ScratchArray<MMPoint2D*> blocks_;
    uint32_t count_ = 0;
};

// The segments of a path, in scratch memory. Points stay in the path's own words, curves are
// flattened for the context's transform.
class DecodedPath {
public:
    // Converts to false when the scratch stack was exhausted. With forFillOnly, curves leave out
    // the points that a fill does not need.
    DecodedPath(MMContext2D& context, const uint32_t* path, bool forFillOnly);
    explicit operator bool() const { return complete_; }

    uint32_t subpathCount() const { return subpathCount_; }
    uint32_t segmentCount(uint32_t subpath) const { return subpathWords_[subpath] >> 1; }
    bool isClosed(uint32_t subpath) const { return (subpathWords_[subpath] & 1u) != 0; }

    // The segments of all subpaths in order, none of them empty.
    MMLinkPath* segments() { return segments_.data(); }
    uint32_t totalSegments() const { return totalSegments_; }
    uint64_t totalPoints() const { return totalPoints_; }

    // What curves have left out: how many points, and the bounds of those curves in device space.
    uint64_t pointsLeftOut() const { return visible_.leftOut(); }
    const BoundsUnion& boundsOfCut() const { return visible_.bounds(); }

private:
    // What the commands really hold; the header's own figure cannot be trusted.
    struct Sizes {
        uint32_t segments;
        uint32_t curves;
    };

    static Sizes scan(const uint32_t* path);
    DecodedPath(MMContext2D& context, const uint32_t* path, bool forFillOnly, Sizes sizes);
    bool decode(const uint32_t* path, bool forFillOnly);
    void append(MMLinkPath segment);

    uint32_t subpathCount_;
    ScratchArray<uint32_t> subpathWords_; // twice the number of segments, plus 1 when closed
    ScratchArray<MMLinkPath> segments_;
    CurveBuffers curves_;
    const ClipWindow window_;
    VisibleCurves visible_;
    uint32_t totalSegments_ = 0;
    uint64_t totalPoints_ = 0;
    bool complete_ = false;
};

} // namespace Graphics2D
} // namespace KAVO
