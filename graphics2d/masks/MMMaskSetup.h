// SPDX-License-Identifier: MIT
// Making, combining and converting masks.
//
//     uint8_t levels[64 * 64];
//     MMMask round = makeMask(levels, 0, 0, 64, 64);
//     context.maskTarget = &round; // from here on drawing goes into the mask ...
//     context.drawEllipticalRect(32_fx, 32_fx, 30_fx, 30_fx, 30_fx, 30_fx);
//     context.maskTarget = nullptr;
//     context.clipMask = &round;   // ... and from here on through it
//     context.drawImage(&photo, 0, 0, 64_fx, 64_fx, 0);
//     context.clipMask = nullptr;
#pragma once

#include "../MMContext2D.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

// What a mask takes from pixels. Their colours are premultiplied with their alpha, as drawing by
// the refined rules onto cleared pixels leaves them.
enum MMMaskSource : uint8_t {
    kMaskFromAlpha = 0,
    kMaskFromLuminance = 1,      // BT.709 weights of the sRGB values as they are, times alpha
    kMaskFromLinearLuminance = 2 // of the linear light that they stand for, times alpha
};

#pragma GCC visibility push(default)

// A mask over the caller's (right - left) * (bottom - top) levels, all 0. Empty when right or
// bottom do not lie beyond left and top, or levels is null.
MMMask makeMask(uint8_t* levels, int16_t left, int16_t top, int16_t right, int16_t bottom);

// Gives all pixels of the mask one level.
void fillMask(const MMMask& mask, uint8_t level);

// The part of a mask that the shape drawn last may have touched: what lies within the context's
// bounds fields, which accumulateBounds has cover strokes and text whole. Draw through it, and
// nothing outside is looked at; clear it, and a mask that was clear before is so again. So a small
// shape in a mask of the whole target costs no more than in one of its own size. Without levels
// when nothing was touched.
inline MMMask drawnPart(const MMMask& mask, const MMContext2D& context)
{
    // Pixels may lie half a coordinate off.
    const int32_t left = std::max<int32_t>(mask.left, fixFloor(context.boundsMinX) - 1);
    const int32_t top = std::max<int32_t>(mask.top, fixFloor(context.boundsMinY) - 1);
    const int32_t right = std::min<int32_t>(mask.right, fixFloor(context.boundsMaxX) + 2);
    const int32_t bottom = std::min<int32_t>(mask.bottom, fixFloor(context.boundsMaxY) + 2);
    if (left >= right || top >= bottom || mask.levels == nullptr) return {0, 0, 0, 0, 0, nullptr};
    return {static_cast<int16_t>(left),
            static_cast<int16_t>(top),
            static_cast<int16_t>(right),
            static_cast<int16_t>(bottom),
            mask.rowBytes,
            mask.levels + static_cast<size_t>(top - mask.top) * mask.rowBytes +
                static_cast<size_t>(left - mask.left)};
}

// 255 - level in place of each level.
void invertMask(const MMMask& mask);

// Multiplies the levels of a mask with those of another, which are 0 outside of its rectangle. The
// result is rounded to nearest.
void intersectMask(const MMMask& mask, const MMMask& other);

// Fills a mask from pixels; the pixel (0, 0) of the pixmap lies at the device pixel (left, top).
// Beyond the pixmap the levels become 0. Unknown sources count as alpha.
void setMaskFromPixels(const MMMask& mask, const MMPixmap& pixels, int16_t left, int16_t top,
                       MMMaskSource source);

#pragma GCC visibility pop

} // namespace Graphics2D
} // namespace KAVO
