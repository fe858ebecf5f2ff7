// SPDX-License-Identifier: MIT
// What stands between drawing and the pixels of the target: a mask that it is drawn through, a mask
// that it is drawn into, and a layer. Internal.
//
// All of it is asked for once per polygon and once per run of glyphs, by isRedirected.
#pragma once

#include "graphics2d/MMLayerSurface.h"
#include "graphics2d/MMMask.h"
#include "graphics2d/PixelBox.h"

namespace KAVO {
namespace Graphics2D {

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

inline PixelBox boxOf(const MMLayerSurface& layer)
{
    return {layer.left, layer.top, layer.right, layer.bottom};
}

// Of the first column of the layer's rectangle.
inline Pixel* layerRow(const MMLayerSurface& layer, int32_t row)
{
    const size_t width = static_cast<size_t>(layer.right - layer.left);
    return layer.pixels + static_cast<size_t>(row - layer.top) * width;
}

// Clears what has not been cleared of the columns from first to end - 1 of a layer's row, which are
// inside the layer, and between them and those that are there; but not what is about to be
// overwritten.
void prepareColumns(const MMLayerSurface& layer, int32_t row, int32_t first, int32_t end,
                    bool isOverwritten);

// The same for what is inside the layer of any box.
void prepareLayer(const MMLayerSurface& layer, const PixelBox& part);

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
