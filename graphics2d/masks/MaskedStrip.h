// SPDX-License-Identifier: MIT
// Spans drawn through a mask or into one. Internal.
//
// The fillers here take the place of the paint's own where the context has a clipMask or a
// maskTarget; they are chosen once per polygon, so that spans without masks know nothing of them.
#pragma once

#include "graphics2d/Redirection.h"
#include "graphics2d/strips/StripDispatch.h"

namespace KAVO {
namespace Graphics2D {

// Makes the target ready for drawing in a box.
inline void prepareTarget(const MMContext2D& context, const PixelBox& box)
{
    if (context.layer == nullptr || context.maskTarget != nullptr) return;
    // A pixel more on the left and two on the right: classic spans may be rounded to there, and
    // read their right-hand neighbours.
    prepareLayer(*context.layer, {box.left - 1, box.top, box.right + 2, box.bottom});
}

// Whether spans of the current paint meet a mask. Picking asks those around the open layers, too.
inline bool usesMasks(const MMContext2D& context)
{
    return context.clipMask != nullptr || context.maskTarget != nullptr ||
           (context.layer != nullptr && context.currentPaint.paintType == kPaintPicking);
}

enum class BoxSide { kTop, kBottom };

// How many rows of a box inside the clipMask it hides from a side on: they take less time to be
// looked through here than to be rasterised.
int32_t hiddenRows(const MMContext2D& context, const PixelBox& box, BoxSide side);

// For the interior of shapes, and for runs of edge pixels.
SpanFiller maskedSpanFiller(const MMContext2D& context);
StripFiller maskedEdgeFiller(const MMContext2D& context);

// The same into a mask.
void drawSpanIntoMask(MMContext2D& context);
void drawRunIntoMask(MMContext2D& context);

// Draws the alphas of a layer's pixels by an opacity over the levels of a mask, as far as other
// levels, if there are any, let them.
void addAlphas(uint8_t* to, const Pixel* drawn, const uint8_t* levels, uint32_t opacity,
               int32_t count);

} // namespace Graphics2D
} // namespace KAVO
