// SPDX-License-Identifier: MIT
// Rows drawn into a layer, into a mask, or through one.
#include "graphics2d/raster/RowPainter.h"

#include "graphics2d/masks/MaskedStrip.h"

namespace KAVO {
namespace Graphics2D {

void RowPainter::redirect()
{
    if (!draws()) return;
    own_ = {span_, anyEdge_};
    context_.ownFillers = &own_;
    if (!usesMasks(context_) && context_.refined != 0) {
        span_ = {drawSpanIntoLayer, false};
        anyEdge_ = drawRunIntoLayer;
        return;
    }
    prepareTarget(context_, visible_);
    if (!usesMasks(context_)) return;
    span_ = {maskedSpanFiller(context_), false};
    anyEdge_ = maskedEdgeFiller(context_);
    edgeIgnoresCoverage_ = context_.currentPaint.paintType == kPaintPicking ||
                           (edgeIgnoresCoverage_ && context_.maskTarget == nullptr);
}

} // namespace Graphics2D
} // namespace KAVO
