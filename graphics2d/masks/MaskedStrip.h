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

// For the interior of shapes, and for runs of edge pixels.
StripFiller maskedSpanFiller(const MMContext2D& context);
StripFiller maskedEdgeFiller(const MMContext2D& context);

// Moves count pixels toward others by the levels / 255, rounded once.
void moveByLevels(Pixel* pixels, const Pixel* drawn, const uint8_t* levels, int32_t count);

// A share of an 8.8 coverage, by a level, rounded.
inline uint32_t shareOfLevel(uint32_t coverage, uint32_t level)
{
    return (coverage * level + 127) / 255;
}

// Draws an 8.8 coverage, up to 255.0, over a level: the one rounding of all that is in it.
inline void addLevel(uint8_t& level, uint32_t coverage)
{
    level = static_cast<uint8_t>(level + ((255u - level) * coverage + 0x7F80) / 0xFF00);
}

} // namespace Graphics2D
} // namespace KAVO
