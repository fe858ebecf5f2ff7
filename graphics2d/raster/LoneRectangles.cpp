// SPDX-License-Identifier: MIT
// Upright rectangles of a shape that no other comes near.
//
// Plots, maps and grids are paths of many rectangles, most of which lie apart. What covers the
// pixels of such a one is known without a sweep and without winding numbers.
//
// Which ones lie apart is seen on a map of cells, one pixel wide and two high. Every rectangle
// takes the cells of its box, and those that are taken twice are shared; one without shared cells
// is alone. The box includes the column behind it, for partial pixels of neighbouring columns are
// drawn as one run. The map may be smaller than the target and begins anew where it ends, so that
// rows far apart share cells, and some that are alone are not found.
//
// Cost: a few steps for each 32 columns of two rows, far less than drawing them. Memory, from the
// scratch stack: some words for each of these steps, but no more than two bits for each visible
// pixel.
#include "graphics2d/raster/LoneRectangles.h"

#include "graphics2d/raster/RasterRectangle.h"

#include <algorithm>
#include <cstring>

namespace KAVO {
namespace Graphics2D {

namespace {

// Draws rows of a rectangle on the pixel grid, so much of each of which lies in it.
void drawRows(RowPainter& painter, const BoundsUnion& box, int32_t row, int32_t rows, Area height)
{
    // What lies left of an edge in the edge's column.
    const auto leftOf = [height](Fixed x) {
        return static_cast<Area>(static_cast<uint64_t>(height) * fixFraction(x) >> 16);
    };
    const Area left = height - leftOf(box.minX);
    const Area right = leftOf(box.maxX);
    const int32_t first = fixFloor(box.minX);
    const int32_t last = fixFloor(box.maxX);
    painter.beginRow(row, rows);
    if (first == last) {
        painter.addConstant(first, first + 1, left + right - height);
    } else {
        painter.addConstant(first, first + 1, left);
        painter.addConstant(first + 1, last, height);
        painter.addConstant(last, last + 1, right);
    }
    painter.flush();
}

// Draws a rectangle on the pixel grid. None of its columns is hidden.
void drawAlone(RowPainter& painter, const BoundsUnion& box)
{
    constexpr int32_t kFewRows = 3; // whole ones that cost no more one at a time
    const PixelBox& visible = painter.visible();
    const int32_t wholeEnd = std::min(fixFloor(box.maxY), visible.bottom);
    for (int32_t row = std::max(fixFloor(box.minY), visible.top); row < visible.bottom;) {
        const Fixed top = std::max(box.minY, fixFromInt(row));
        const Area height = std::min(box.maxY, fixFromInt(row + 1)) - top;
        if (height <= 0) return;
        const bool areMany = wholeEnd - row > kFewRows && height == kWholeArea;
        const int32_t rows = areMany ? std::min(wholeEnd - row, painter.rowsAtOnce(false)) : 1;
        drawRows(painter, box, row, rows, height);
        row += rows;
    }
}

} // namespace

uint32_t LoneRectangles::mapSize(const Contours& contours, const PixelBox& visible)
{
    constexpr uint32_t kFew = 8;        // fewer are not worth a map
    constexpr uint32_t kPixelsEach = 8; // with less room hardly any can be alone
    const auto pixels =
        static_cast<uint32_t>((visible.right - visible.left) * (visible.bottom - visible.top));
    if (contours.count < kFew || contours.count > pixels / kPixelsEach) return 0;
    uint64_t cells = 0, words = 0; // that the rectangles take, about
    for (uint32_t i = 0; i < contours.count; ++i) {
        const MMPoint2D* const corners = contours.begin(i);
        if (!isUprightRectangle(corners, static_cast<uint32_t>(contours.end(i) - corners)))
            return 0;
        const uint32_t width = magnitudeOf(wrapSub(corners[2].x, corners[0].x)) >> 16;
        const uint32_t rows = (magnitudeOf(wrapSub(corners[2].y, corners[0].y)) >> 17) + 2;
        cells += uint64_t{width + 2} * rows;
        words += uint64_t{width / 32 + 1} * rows;
        if (cells > pixels) return 0; // twice of all cells: few are alone, or visible
    }
    const int32_t all = ((visible.bottom - visible.top) / 2 + 1) * pitchFor(visible);
    uint32_t size = 1;
    while (size / 4 < words && size < static_cast<uint32_t>(all))
        size *= 2;
    return size;
}

LoneRectangles::LoneRectangles(MMStackContext& stack, RowPainter& painter, const PixelGrid& grid,
                               const Contours& contours, uint32_t mapSize)
    : painter_(painter), grid_(grid), size_(mapSize), cells_(stack, size_),
      pitch_(pitchFor(painter.visible()))
{
    if (!cells_) return;
    std::memset(cells_.data(), 0, sizeof(Cells) * size_);
    for (uint32_t i = 0; i < contours.count; ++i)
        visit(contours.begin(i), true);
}

bool LoneRectangles::draw(const MMPoint2D* corners)
{
    if (visit(corners, false)) return false;
    const PixelBox& visible = painter_.visible();
    if (fixFloor(box_.minX) < visible.left || fixFloor(box_.maxX) >= visible.right) return false;
    drawAlone(painter_, box_);
    return true;
}

// Takes a rectangle's cells, or says whether some are shared.
bool LoneRectangles::visit(const MMPoint2D* corners, bool takes)
{
    const MMPoint2D a = grid_.moved(corners[0]);
    const MMPoint2D b = grid_.moved(corners[2]);
    box_ = {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
    const int32_t left = fixFloor(box_.minX);
    const int32_t right = fixFloor(box_.maxX - 1) + 1;
    const int32_t bottom = fixFloor(box_.maxY - 1) >> 1;
    for (int32_t row = fixFloor(box_.minY) >> 1; row <= bottom; ++row) {
        for (int32_t i = left >> 5; i <= right >> 5; ++i) {
            uint32_t bits = ~0u;
            if (i == left >> 5) bits <<= left & 31;
            if (i == right >> 5) bits &= ~0u >> (~right & 31);
            Cells& cells = cells_[static_cast<uint32_t>(row * pitch_ + i) & (size_ - 1)];
            if (!takes && (cells.shared & bits) != 0) return true;
            if (!takes) continue;
            cells.shared |= cells.taken & bits;
            cells.taken |= bits;
        }
    }
    return false;
}

} // namespace Graphics2D
} // namespace KAVO
