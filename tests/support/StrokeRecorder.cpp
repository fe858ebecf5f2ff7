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
extern "C" {

void __real__ZN4KAVO10Graphics2D13strokeSubpathERNS0_11MMContext2DERKNS0_9DevicePenEPK10MMLinkPathjb(
    MMContext2D& context, const DevicePen& pen, const MMLinkPath* records, uint32_t recordCount,
    bool closed);

void __wrap__ZN4KAVO10Graphics2D13strokeSubpathERNS0_11MMContext2DERKNS0_9DevicePenEPK10MMLinkPathjb(
    MMContext2D& context, const DevicePen& pen, const MMLinkPath* records, uint32_t recordCount,
    bool closed);

void __wrap__ZN4KAVO10Graphics2D13strokeSubpathERNS0_11MMContext2DERKNS0_9DevicePenEPK10MMLinkPathjb(
    MMContext2D& context, const DevicePen& pen, const MMLinkPath* records, uint32_t recordCount,
    bool closed)
{
    if (recorder == nullptr) {
        __real__ZN4KAVO10Graphics2D13strokeSubpathERNS0_11MMContext2DERKNS0_9DevicePenEPK10MMLinkPathjb(
            context, pen, records, recordCount, closed);
        return;
    }
    StrokeRecorder::Stroke stroke = {
        {}, recordCount, closed, context.joinStyle, context.currentPaint.paintColour};
    BoundsUnion bounds;
    for (uint32_t i = 0; i < recordCount; ++i) {
        for (uint32_t j = 0; j < records[i].count; ++j) {
            stroke.points.push_back(records[i].points[j]);
            bounds.addPoint(records[i].points[j]);
        }
    }
    bounds.storeTo(context);
    recorder->strokes.push_back(std::move(stroke));
}

} // extern "C"
