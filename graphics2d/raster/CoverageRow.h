// SPDX-License-Identifier: MIT
// Exact area coverage of one row of pixels, summed up from straight pieces of edges. Internal.
//
// Each piece adds, in every column, the area between itself and the right end of the row; the
// pieces of left edges are positive, those of right edges negative. The row holds the differences
// of these sums from column to column, so a piece touches only the columns it passes through and
// one more, and a bitmap of touched columns lets the sweep skip the constant stretches between.
// Everything lost to rounding cancels: a piece adds exactly its height in total.
#pragma once

#include "graphics2d/raster/RowPainter.h"
#include "memory/ScratchArray.h"

namespace KAVO {
namespace Graphics2D {

class CoverageRow {
public:
    // Takes room for the visible columns from the scratch stack.
    CoverageRow(MMStackContext& stack, const PixelBox& visible);

    // False when there was no memory; nothing else may be called then.
    explicit operator bool() const { return static_cast<bool>(words_); }

    // Where the visible columns begin and end. What lies left of them only counts for its height,
    // what lies right of them not at all.
    Fixed startX() const { return fixFromInt(left_); }
    Fixed endX() const { return fixFromInt(left_ + columns_); }

    // A piece from (topX, level) to (bottomX, level + height) within the row. Height is in 1/65536
    // of the row, 0 to 0x10000; sign is 1 for a left edge and -1 for a right edge.
    void addPiece(Fixed topX, Fixed bottomX, uint32_t height, int32_t sign);

    // Draws the row and clears it.
    void sweep(RowPainter& painter);

private:
    void addDelta(int32_t column, int32_t delta)
    {
        const uint32_t i = static_cast<uint32_t>(column);
        words_[i] += delta;
        touched_[i / 32] |= 1u << (i % 32);
    }
    void addSloped(Fixed low, Fixed high, uint32_t height, int32_t sign);

    int32_t left_;    // the first visible column is index 0
    int32_t columns_; // number of visible columns; the sums have one entry more
    // The differences, and behind them the bitmap.
    ScratchArray<int32_t> words_;
    uint32_t* touched_ = nullptr;
};

} // namespace Graphics2D
} // namespace KAVO
