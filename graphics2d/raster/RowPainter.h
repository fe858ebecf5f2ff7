// SPDX-License-Identifier: MIT
// From coverage to strip fillers: draws one row after another, each from left to right. Internal.
//
// Callers name pieces of the row with the share of each pixel that is inside the shape. Whole
// pixels go to the paint's span filler in runs as long as possible. Partial ones go to its edge
// filler in arithmetic runs: an arbitrary first and second pixel, a constant step from the second
// on, and an arbitrary last one. No pixel is written twice, and none before its left neighbour,
// because most fillers take a pixel's background from the neighbour on its right.
#pragma once

#include "graphics2d/raster/PolygonBounds.h"
#include "graphics2d/strips/StripDispatch.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

// Share of a pixel inside the shape: 0 to kWholeArea.
using Area = int32_t;
constexpr Area kWholeArea = 0x10000;

// Areas that round to a weight of 0 or 255 count as nothing and as all of the pixel.
constexpr Area kLeastArea = 129;
constexpr Area kMostArea = kWholeArea - 128;

inline bool isPartial(Area area)
{
    return area >= kLeastArea && area < kMostArea;
}

// How far the filler of linear gradients can be trusted with an arithmetic run: it computes the
// weights of a run's first three pixels and extrapolates the others.
enum class RunLimits {
    kNone,       // no such filler: any run
    kHalfWeight, // opaque colours: exact while the weights stay on one side of 128, where all count
                 // one more
    kThreePixels // fading colours, whose weights are products of two ramps
};

class RowPainter {
public:
    RowPainter(MMContext2D& context, const PixelBox& visible);
    RowPainter(const RowPainter&) = delete; // the context may point at its fillers
    RowPainter& operator=(const RowPainter&) = delete;

    // False when the paint draws nothing at all.
    bool draws() const { return span_.filler != nullptr || edge_ != nullptr; }

    const PixelBox& visible() const { return visible_; }

    // Whether rows one at a time are drawn in a solid colour, each pixel by nothing but its area.
    bool blendsColour() const { return colourRun_ != nullptr && context_.spanRows == 1; }

    // Rows that are drawn alike may be drawn at once by fillers that know how to.
    void beginRow(int32_t row, int32_t rows = 1);

    // How many. Where pixels are partial these are more than one only if no filler takes a pixel's
    // background from a neighbour: a block is drawn span by span.
    int32_t rowsAtOnce(bool areSharp) const
    {
        return 1 + (areSharp ? span_.moreSharp : span_.moreSmooth);
    }

    // How many of the next rows a mask hides, of so many that would be drawn alike.
    int32_t hiddenRows(int32_t row, int32_t rows) const;

    // Has the memory of a pixel fetched that will be drawn soon. Shapes begin each row in a place
    // that the processor does not foresee, and waiting for it is what a small shape costs most.
    void expect(int32_t row, Fixed x) const
    {
        const MMPixmap& target = context_.target;
        const int64_t offset = int64_t{row} * target.rowBytes + int64_t{fixFloor(x)} * 4;
        __builtin_prefetch(reinterpret_cast<const void*>(
            reinterpret_cast<uintptr_t>(target.pixels) + static_cast<uintptr_t>(offset)));
    }

    // Whole pixels of columns first to end - 1, which lie within the visible box.
    void drawWhole(int32_t first, int32_t end);

    // Columns first to first + count - 1 with the areas start, next, next + step, ... and one more
    // column with the area tail unless that is 0. The step has 24 fraction bits. Within the visible
    // box.
    void drawPartial(int32_t first, int32_t count, Area start, Area next, int32_t step, Area tail);

    // Gives the columns first to end - 1 the same area each, to the right of what was given before.
    // Drawing may be delayed until flush().
    void addConstant(int32_t first, int32_t end, Area area);

    // A span of a row without anti-aliasing: its ends reach the filler as they are, cut to the clip
    // rectangle and the target alone. Even a span without a whole pixel does, for a filler may look
    // at the fractions: images are sampled from where the span starts, and picking compares them.
    void drawSharp(Fixed start, Fixed end)
    {
        start = std::max(start, drawableStart_);
        end = std::min(end, drawableEnd_);
        if (start >= end) return;
        context_.spanStart = start;
        context_.spanEnd = end;
        drawSpan(context_, span_);
    }

    // Gives the columns from first on an area each. Likewise.
    void addAreas(int32_t first, const Area* areas, int32_t count);

    void flush()
    {
        if (wholeFirst_ == wholeEnd_) return;
        drawWhole(wholeFirst_, wholeEnd_);
        wholeFirst_ = wholeEnd_;
    }

private:
    // Coverage of a run: of its first, second and every further pixel, and of one more.
    struct Run {
        int32_t first;
        int32_t count;
        Coverage start;
        Coverage next;
        Coverage step;
        Coverage tail;

        Coverage at(int32_t i) const { return i == 0 ? start : next + (i - 1) * step; }
        Run part(int32_t from, int32_t length) const;
    };

    void blendColour(int32_t first, int32_t count, Coverage start, Coverage next, Coverage step)
    {
        colourRun_(context_.spanPixels + first, count, context_.currentPaint.paintColour, start,
                   next, step);
    }
    [[gnu::noinline]] void redirect();
    void drawRun(const Run& run);
    void drawAny(const Run& run);
    void drawInHalves(const Run& run);
    void drawInThrees(const Run& run);
    void addWhole(int32_t first, int32_t end)
    {
        if (wholeEnd_ != first) {
            flush();
            wholeFirst_ = first;
        }
        wholeEnd_ = end;
    }

    MMContext2D& context_;
    PixelBox visible_;
    Fixed drawableStart_; // the columns of the clip rectangle within the target
    Fixed drawableEnd_;
    SpanFiller span_;
    StripFiller edge_;    // of partial pixels, within the limits; null draws nothing
    ColourRun colourRun_; // the same of a solid colour that is not redirected; null of others
    bool fillsColour_;    // span_ only writes the solid colour
    int32_t opacity_;
    RunLimits limits_;
    OwnFillers own_;           // where those above are a mask's or a layer's
    bool edgeIgnoresCoverage_; // exclusive-or and picking: no tail pixel either

    // The run of whole pixels not drawn yet.
    int32_t wholeFirst_ = 0;
    int32_t wholeEnd_ = 0;
};

} // namespace Graphics2D
} // namespace KAVO
