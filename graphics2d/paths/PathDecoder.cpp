// SPDX-License-Identifier: MIT
// Decoding of encoded paths.
//
// The command words are read twice: once to size the tables, once to fill them. Memory is three
// tables (a word per subpath, a record per segment, a pointer per curve) and one block per curve,
// taken at its usual size and shrunk to its points: at most 1,024, in 2 words each.
#include "graphics2d/paths/PathDecoder.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

CurveBuffers::~CurveBuffers()
{
    while (count_ > 0)
        context_.scratchStack.DeAlloc(blocks_[--count_]);
}

MMLinkPath CurveBuffers::flatten(const MMPoint2D& start, const MMPoint2D* curve,
                                 VisibleCurves* visible)
{
    MMStackContext& stack = context_.scratchStack;
    const BezierCurve bezier = {start, curve[0], curve[1], curve[2]};
    uint32_t capacity = kUsualCurvePoints;
    for (;;) {
        void* block = stack.Alloc(scratchWordsFor<MMPoint2D>(capacity));
        if (block == nullptr) return {nullptr, 0};
        MMPoint2D* points = static_cast<MMPoint2D*>(block);
        const uint32_t count = visible != nullptr
                                   ? visible->flatten(bezier, points, capacity)
                                   : flattenBezier(curveRuleOf(context_), bezier, points, capacity);
        if (count > capacity) { // once, for a vast curve
            stack.DeAlloc(block);
            capacity = count;
            continue;
        }
        // Shrinking happens in place.
        block = stack.ReAlloc(block, scratchWordsFor<MMPoint2D>(count));
        blocks_[count_++] = static_cast<MMPoint2D*>(block);
        return {static_cast<MMPoint2D*>(block), count};
    }
}

DecodedPath::Sizes DecodedPath::scan(const uint32_t* path)
{
    uint64_t segments = 0;
    uint64_t curves = 0;
    uint32_t subpathsLeft = subpathCountOf(*path++);
    while (subpathsLeft > 0) {
        const PathCommand command = {*path++};
        path += command.itemWords();
        if (command.kind() == kPathPoints) ++segments;
        if (command.kind() == kPathCurves) curves += command.itemCount();
        if (command.endsSubpath()) --subpathsLeft;
    }
    segments += curves;
    // More than 32 bits can count is more than the stack can serve.
    return {static_cast<uint32_t>(std::min<uint64_t>(segments, UINT32_MAX)),
            static_cast<uint32_t>(std::min<uint64_t>(curves, UINT32_MAX))};
}

DecodedPath::DecodedPath(MMContext2D& context, const uint32_t* path, bool forFillOnly)
    : DecodedPath(context, path, forFillOnly, scan(path))
{
}

DecodedPath::DecodedPath(MMContext2D& context, const uint32_t* path, bool forFillOnly, Sizes sizes)
    : subpathCount_(subpathCountOf(*path)), subpathWords_(context.scratchStack, subpathCount_),
      segments_(context.scratchStack, sizes.segments), curves_(context, sizes.curves),
      window_(context), visible_(curveRuleOf(context), window_)
{
    if (!subpathWords_ || !segments_ || !curves_) return;
    complete_ = decode(path + 1, forFillOnly);
}

void DecodedPath::append(MMLinkPath segment)
{
    segments_[totalSegments_++] = segment;
    totalPoints_ += segment.count;
}

// False when a curve finds no memory. Segments without points are left out, and so are curves with
// no point before them to start from.
bool DecodedPath::decode(const uint32_t* path, bool forFillOnly)
{
    VisibleCurves* visible = forFillOnly ? &visible_ : nullptr;
    uint32_t subpathStart = 0;
    for (uint32_t subpath = 0; subpath < subpathCount_;) {
        const PathCommand command = {*path++};
        const MMPoint2D* points = pathPoints(path);
        if (command.kind() == kPathPoints && command.itemCount() > 0)
            append({pathPoints(path), command.itemCount()});
        if (command.kind() == kPathCurves && totalSegments_ > 0) {
            for (uint32_t i = 0; i < command.itemCount(); ++i, points += 3) {
                const MMLinkPath& last = segments_[totalSegments_ - 1];
                const MMLinkPath curve =
                    curves_.flatten(last.points[last.count - 1], points, visible);
                if (curve.points == nullptr) return false;
                append(curve);
            }
        }
        path += command.itemWords();
        if (!command.endsSubpath()) continue;
        subpathWords_[subpath++] =
            2 * (totalSegments_ - subpathStart) + (command.closes() ? 1u : 0u);
        subpathStart = totalSegments_;
    }
    return true;
}

uint32_t MMContext2D::getPathKeyPointCount(const uint32_t* storedPath)
{
    if (storedPath == nullptr) return 0;
    const uint32_t* path = storedPath + 1;
    uint32_t subpathsLeft = subpathCountOf(*path++);
    uint32_t count = 0;
    do {
        const PathCommand command = {*path++};
        count += command.itemCount() + (command.closes() ? 1u : 0u);
        path += command.itemWords();
        if (command.endsSubpath() && subpathsLeft > 0) --subpathsLeft;
    } while (subpathsLeft > 0);
    return count;
}

} // namespace Graphics2D
} // namespace KAVO
