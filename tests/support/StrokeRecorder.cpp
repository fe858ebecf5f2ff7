// SPDX-License-Identifier: MIT
#include "tests/support/StrokeRecorder.h"

// The stroker is compiled here once more, under another name of its own, and this test program is
// linked without the library's object of it: so calls of strokeSubpath from other files come here.
#define strokeSubpath strokeReally
#include "graphics2d/strokes/Stroker.cpp"
#undef strokeSubpath

namespace {

StrokeRecorder* recorder = nullptr;

} // namespace

StrokeRecorder::StrokeRecorder()
{
    recorder = this;
}

StrokeRecorder::~StrokeRecorder()
{
    recorder = nullptr;
}

namespace KAVO {
namespace Graphics2D {

BoundsUnion strokeSubpath(MMContext2D& context, const DevicePen& pen, const Subpath& subpath)
{
    if (recorder == nullptr) return strokeReally(context, pen, subpath);
    StrokeRecorder::Stroke stroke = {
        {}, subpath.recordCount, subpath.closed, pen.joinStyle, context.currentPaint.paintColour};
    BoundsUnion bounds;
    for (uint32_t i = 0; i < subpath.recordCount; ++i)
        for (uint32_t j = 0; j < subpath.records[i].count; ++j) {
            stroke.points.push_back(subpath.records[i].points[j]);
            bounds.addPoint(stroke.points.back());
        }
    recorder->strokes.push_back(std::move(stroke));
    return bounds;
}

} // namespace Graphics2D
} // namespace KAVO
