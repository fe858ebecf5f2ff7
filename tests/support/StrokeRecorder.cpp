// SPDX-License-Identifier: MIT
#include "tests/support/StrokeRecorder.h"

using namespace KAVO::Graphics2D;

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

// The linker leads calls of strokeSubpath here.
#define STROKE_SUBPATH                                                                             \
    "_ZN4KAVO10Graphics2D13strokeSubpathERNS0_11MMContext2DERKNS0_9DevicePenERKNS0_7SubpathE"

BoundsUnion strokeReally(MMContext2D& context, const DevicePen& pen,
                         const Subpath& subpath) __asm__("__real_" STROKE_SUBPATH);

BoundsUnion record(MMContext2D& context, const DevicePen& pen,
                   const Subpath& subpath) __asm__("__wrap_" STROKE_SUBPATH);

BoundsUnion record(MMContext2D& context, const DevicePen& pen, const Subpath& subpath)
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
