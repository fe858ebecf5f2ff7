// SPDX-License-Identifier: MIT
// Exact area coverage of one row of pixels.
#include "graphics2d/raster/CoverageRow.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

uint32_t bitmapWords(int32_t columns)
{
    return static_cast<uint32_t>(columns) / 32 + 1;
}

// height * part / whole, part at most whole.
uint32_t shareOf(uint32_t height, uint32_t part, uint32_t whole)
{
    return static_cast<uint32_t>(static_cast<uint64_t>(height) * part / whole);
}

// Half of height * width, both 16.16 and at most 1.0: the area of a triangle.
uint32_t triangle(uint32_t height, uint32_t width)
{
    return static_cast<uint32_t>(static_cast<uint64_t>(height) * width >> 17);
}

} // namespace

CoverageRow::CoverageRow(MMStackContext& stack, const PixelBox& visible)
    : left_(visible.left), columns_(visible.right - visible.left),
      words_(stack, static_cast<uint32_t>(columns_) + 1 + bitmapWords(columns_))
{
    if (!words_) return;
    int32_t* const bitmap = words_.data() + columns_ + 1;
    std::fill(words_.data(), bitmap + bitmapWords(columns_), 0);
    touched_ = reinterpret_cast<uint32_t*>(bitmap);
}

void CoverageRow::addPiece(Fixed topX, Fixed bottomX, uint32_t height, int32_t sign)
{
    const Fixed low = std::min(topX, bottomX);
    const Fixed high = std::max(topX, bottomX);
    const int32_t column = fixFloor(low) - left_;
    if (column >= columns_) return;
    if (fixFloor(high) < left_) {
        addDelta(0, static_cast<int32_t>(height) * sign);
        return;
    }
    if (fixFloor(high) != fixFloor(low)) {
        addSloped(low, high, height, sign);
        return;
    }
    const uint32_t inset = (fixFraction(low) + fixFraction(high)) / 2;
    const int32_t outside = static_cast<int32_t>((height * inset) >> 16);
    addDelta(column, (static_cast<int32_t>(height) - outside) * sign);
    if (outside != 0) addDelta(column + 1, outside * sign);
}

// The area right of the piece grows along a parabola in the first and last column it passes and
// linearly between.
void CoverageRow::addSloped(Fixed low, Fixed high, uint32_t height, int32_t sign)
{
    const uint32_t travel = static_cast<uint32_t>(high) - static_cast<uint32_t>(low);
    const int32_t first = fixFloor(low) - left_;
    const int32_t last = fixFloor(high) - left_;
    const uint32_t firstWidth = 0x10000u - fixFraction(low);
    const uint32_t lastWidth = fixFraction(high);
    const uint32_t firstHeight = shareOf(height, firstWidth, travel);
    const int32_t whole = static_cast<int32_t>(height);

    int32_t area = 0; // of the column before
    int32_t column = first;
    if (first >= 0) {
        area = static_cast<int32_t>(triangle(firstHeight, firstWidth));
        addDelta(first, area * sign);
        column = first + 1;
    } else {
        column = 0;
    }
    if (column < last) {
        // 8.24 and more: the height gained per column, and half a column less at the first of them.
        const uint64_t step = (static_cast<uint64_t>(height) << 24) / travel;
        uint64_t level = (static_cast<uint64_t>(firstHeight) << 8) + step / 2 +
                         step * static_cast<uint64_t>(column - first - 1);
        const int32_t end = std::min(last, columns_);
        for (; column < end; ++column) {
            const int32_t next = static_cast<int32_t>(level >> 8);
            addDelta(column, (next - area) * sign);
            area = next;
            level += step;
        }
    }
    if (last >= columns_) return;
    const uint32_t lastHeight =
        last == first + 1 ? height - firstHeight : shareOf(height, lastWidth, travel);
    const int32_t lastArea = whole - static_cast<int32_t>(triangle(lastHeight, lastWidth));
    addDelta(last, (lastArea - area) * sign);
    if (lastArea != whole) addDelta(last + 1, (whole - lastArea) * sign);
}

void CoverageRow::sweep(RowPainter& painter)
{
    int32_t column = 0;
    Area area = 0;
    const int32_t words = static_cast<int32_t>(bitmapWords(columns_));
    for (int32_t w = 0; w < words; ++w) {
        uint32_t bits = touched_[w];
        touched_[w] = 0;
        while (bits != 0) {
            // A stretch of touched columns, and what lies before it.
            const uint32_t rest = bits & (bits + (bits & (0u - bits)));
            const int32_t first = w * 32 + __builtin_ctz(bits);
            const int32_t end = w * 32 + 32 - __builtin_clz(bits ^ rest);
            bits = rest;
            if (area >= kLeastArea && first != column)
                painter.addConstant(left_ + column, left_ + first, area);
            Area areas[32];
            Area* last = areas;
            for (column = first; column < end; ++column) {
                int32_t& delta = words_[static_cast<uint32_t>(column)];
                area += delta;
                delta = 0;
                *last++ = area;
            }
            // What goes on behind the last one is drawn together with it. The entry behind the
            // last column of all only takes what is left over.
            if (!isPartial(area)) --column;
            if (column != first)
                painter.addAreas(left_ + first, areas, std::min(column, columns_) - first);
        }
    }
    if (area >= kLeastArea && column < columns_)
        painter.addConstant(left_ + column, left_ + columns_, area);
    painter.flush();
}

} // namespace Graphics2D
} // namespace KAVO
