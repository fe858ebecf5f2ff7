// SPDX-License-Identifier: MIT
#include "tests/support/StrokeRecorder.h"

#include "graphics2d/BoundsUnion.h"

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

// The linker leads calls of strokeSubpath here. Its name is the same with 4-byte pointers.
#define STROKE_SUBPATH                                                                             \
    "_ZN4KAVO10Graphics2D13strokeSubpathERNS0_11MMContext2DERKNS0_9DevicePenEPK10MMLinkPathjb"

void strokeReally(MMContext2D& context, const DevicePen& pen, const MMLinkPath* records,
                  uint32_t recordCount, bool closed) __asm__("__real_" STROKE_SUBPATH);

void record(MMContext2D& context, const DevicePen& pen, const MMLinkPath* records,
            uint32_t recordCount, bool closed) __asm__("__wrap_" STROKE_SUBPATH);

void record(MMContext2D& context, const DevicePen& pen, const MMLinkPath* records,
            uint32_t recordCount, bool closed)
{
    if (recorder == nullptr) return strokeReally(context, pen, records, recordCount, closed);
    StrokeRecorder::Stroke stroke = {
        {}, recordCount, closed, pen.joinStyle, context.currentPaint.paintColour};
    for (uint32_t i = 0; i < recordCount; ++i)
        stroke.points.insert(stroke.points.end(), records[i].points,
                             records[i].points + records[i].count);
    BoundsUnion bounds;
    for (const MMPoint2D& p : stroke.points)
        bounds.addPoint(p);
    bounds.storeTo(context);
    recorder->strokes.push_back(std::move(stroke));
}
