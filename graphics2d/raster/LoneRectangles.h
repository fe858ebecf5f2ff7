// SPDX-License-Identifier: MIT
// Upright rectangles of a shape that no other comes near. Internal.
#pragma once

#include "graphics2d/raster/Contours.h"
#include "graphics2d/raster/PixelGrid.h"
#include "graphics2d/raster/RowPainter.h"
#include "memory/ScratchArray.h"

namespace KAVO {
namespace Graphics2D {

class LoneRectangles {
public:
    // Words of the map that they are to be found on, a power of two; 0 unless it pays to look for
    // them: among a good many contours that all are upright rectangles, and have some room.
    static uint32_t mapSize(const Contours& contours, const PixelBox& visible);

    // Looks for them among such contours.
    LoneRectangles(MMStackContext& stack, RowPainter& painter, const PixelGrid& grid,
                   const Contours& contours, uint32_t mapSize);

    // False when there was no memory; nothing else may be called then.
    explicit operator bool() const { return static_cast<bool>(cells_); }

    // Draws the contour with these corners if it is one of them, with anti-aliasing and to the
    // pixel as it would be drawn together with the others. Only in a solid colour (blendsColour).
    // The painter has to begin a row before it draws anything else.
    bool draw(const MMPoint2D* corners);

private:
    // Cells of the map, one in each bit.
    struct Cells {
        uint32_t taken;
        uint32_t shared; // taken twice
    };

    static int32_t pitchFor(const PixelBox& visible)
    {
        return (visible.right - visible.left) / 32 + 1;
    }
    bool visit(const MMPoint2D* corners, bool takes);

    RowPainter& painter_;
    const PixelGrid& grid_;
    uint32_t size_;
    ScratchArray<Cells> cells_;
    int32_t pitch_;   // of the map, from one row to the next
    BoundsUnion box_; // of the rectangle visited last, on the pixel grid
};

} // namespace Graphics2D
} // namespace KAVO
