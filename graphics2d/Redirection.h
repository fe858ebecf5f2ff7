// SPDX-License-Identifier: MIT
// What stands between drawing and the pixels of the target: a mask that it is drawn through, a mask
// that it is drawn into, and a layer. Internal.
//
// All of it is asked for once per polygon and once per run of glyphs, by isRedirected.
#pragma once

#include "graphics2d/MMMask.h"
#include "graphics2d/PixelBox.h"

namespace KAVO {
namespace Graphics2D {

// The columns of a row from first to end - 1; none where end is not greater.
struct ColumnRange {
    int16_t first;
    int16_t end;
};

// The pixels of an open layer. They are cleared when something is about to be drawn there and not
// before, so that a layer costs what is drawn into it.
struct LayerSurface {
    PixelBox box;              // device pixels
    Pixel* pixels;             // of (box.left, box.top)
    uint32_t rowPixels;        // from one row to the next
    ColumnRange* prepared;     // of each row, the columns that are cleared or drawn
    const MMMask* outerMask;   // what clips the layer, or null: inside it only picking asks
    const LayerSurface* outer; // the layer around this one, or null

    // Clears what has not been cleared of a box.
    void prepare(const PixelBox& part);
    Pixel* rowAt(int32_t row) const
    {
        return pixels + static_cast<size_t>(row - box.top) * rowPixels;
    }
};

// A build may leave masks and layers out (MM2D_BUILD_LAYERS); the fields are there all the same.
#ifdef MM2D_WITHOUT_LAYERS
constexpr bool kHasLayers = false;
#else
constexpr bool kHasLayers = true;
#endif

inline bool isRedirected(const MMContext2D& context)
{
    return kHasLayers && (context.clipMask != nullptr || context.maskTarget != nullptr ||
                          context.layer != nullptr);
}

// The mask's rectangle, empty when it has no levels.
PixelBox boxOf(const MMMask& mask);

PixelBox commonBox(const PixelBox& a, const PixelBox& b);

// drawableBox where drawing is redirected.
PixelBox redirectedBox(const MMContext2D& context);

// The levels of a row of the mask, indexed by device columns.
inline uint8_t* maskRow(const MMMask& mask, int32_t row)
{
    const int64_t offset = int64_t{row - mask.top} * mask.rowBytes - mask.left;
    return reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(mask.levels) +
                                      static_cast<uintptr_t>(offset));
}

} // namespace Graphics2D
} // namespace KAVO
