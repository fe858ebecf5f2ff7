// SPDX-License-Identifier: MIT
// Rows drawn into a layer, into a mask, or through one.
#include "graphics2d/raster/RowPainter.h"

#include "graphics2d/masks/MaskedStrip.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// Into a layer by the refined rules and without masks: what lies under a span is cleared just
// before, while it is at hand, and not where the paint hides it.
void drawSpanIntoLayer(MMContext2D& context)
{
    const SpanFiller& own = context.ownFillers->span;
    const int32_t first = fixFloor(context.spanStart);
    const int32_t end = fixFloor(context.spanEnd);
    if (first >= end) return;
    const bool hides = context.currentPaint.paintType == kPaintSolid && !own.flatCoverage;
    prepareColumns(*context.layer, context.spanRow, first, end, hides);
    drawSpan(context, own);
}

void drawRunIntoLayer(MMContext2D& context)
{
    const StripFiller own = context.ownFillers->edge;
    if (own == nullptr) return;
    const int32_t first = fixFloor(context.spanStart);
    const int32_t end = fixFloor(context.spanEnd) + (context.spanTailCoverage > 0 ? 1 : 0);
    if (first < end) prepareColumns(*context.layer, context.spanRow, first, end, false);
    own(context);
}

} // namespace

int32_t RowPainter::hiddenRows(int32_t row, int32_t rows) const
{
    if (context_.clipMask == nullptr) return 0;
    const PixelBox box = {visible_.left, row, visible_.right, row + rows};
    return Graphics2D::hiddenRows(context_, box, BoxSide::kTop);
}

void RowPainter::redirect()
{
    if (!draws()) return;
    own_ = {span_, edge_};
    context_.ownFillers = &own_;
    const bool isMasked = usesMasks(context_);
    if (!isMasked && context_.refined != 0) {
        span_ = {drawSpanIntoLayer, false};
        edge_ = drawRunIntoLayer;
        return;
    }
    prepareTarget(context_, visible_);
    if (!isMasked) return;
    span_ = maskedSpanFiller(context_);
    edge_ = maskedEdgeFiller(context_);
    edgeIgnoresCoverage_ = context_.currentPaint.paintType == kPaintPicking ||
                           (edgeIgnoresCoverage_ && context_.maskTarget == nullptr);
}

} // namespace Graphics2D
} // namespace KAVO
