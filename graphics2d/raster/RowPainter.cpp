// SPDX-License-Identifier: MIT
// From coverage to strip fillers.
#include "graphics2d/raster/RowPainter.h"

namespace KAVO {
namespace Graphics2D {

namespace {

bool isPartial(Area area)
{
    return area >= kLeastArea && area < kMostArea;
}

// How far an area may lie from the arithmetic run it is drawn with: a tenth of a weight.
constexpr Area kRunTolerance = 26;

} // namespace

RowPainter::RowPainter(MMContext2D& context, const PixelBox& visible)
    : context_(context), visible_(visible), span_(chooseSpanFiller(context)),
      edge_(chooseEdgeFiller(context)), opacity_(context.currentPaint.paintOpacity),
      edgeIgnoresCoverage_(context.currentPaint.paintType == kPaintXOR ||
                           context.currentPaint.paintType == kPaintPicking)
{
    const PixelBox drawable = drawableBox(context);
    drawableStart_ = fixFromInt(drawable.left);
    drawableEnd_ = fixFromInt(drawable.right);
}

void RowPainter::beginRow(int32_t row)
{
    const MMPixmap& target = context_.target;
    context_.spanRow = row;
    uint8_t* bytes = reinterpret_cast<uint8_t*>(target.pixels);
    bytes += static_cast<std::size_t>(row) * target.rowBytes;
    context_.spanPixels = reinterpret_cast<Pixel*>(bytes);
}

void RowPainter::drawWhole(int32_t first, int32_t end)
{
    if (first >= end) return;
    context_.spanStart = fixFromInt(first);
    context_.spanEnd = fixFromInt(end);
    drawSpan(context_, span_);
}

void RowPainter::addConstant(int32_t first, int32_t end, Area area)
{
    if (area >= kMostArea) {
        addWhole(first, end);
    } else if (area >= kLeastArea) {
        flush();
        drawPartial(first, end - first, area, area, 0, 0);
    }
}

void RowPainter::drawPartial(int32_t first, int32_t count, Area start, Area next, int32_t step,
                             Area tail)
{
    if (edge_ == nullptr) return;
    context_.spanStart = fixFromInt(first);
    context_.spanEnd = fixFromInt(first + count + (edgeIgnoresCoverage_ && tail > 0 ? 1 : 0));
    context_.spanCoverage = start * opacity_;
    context_.spanCoverageNext = next * opacity_;
    context_.spanCoverageStep = static_cast<Coverage>(static_cast<int64_t>(step) * opacity_ >> 8);
    context_.spanTailCoverage = tail * opacity_;
    (context_.*edge_)();
}

void RowPainter::addAreas(int32_t first, const Area* areas, int32_t count)
{
    for (int32_t i = 0; i < count;) {
        const int32_t start = i++;
        if (!isPartial(areas[start])) {
            if (areas[start] >= kMostArea) addWhole(first + start, first + i);
            continue;
        }
        flush();
        Area next = 0;
        Area step = 0;
        Area tail = 0;
        if (i < count && isPartial(areas[i])) {
            next = areas[i++];
            if (i < count && isPartial(areas[i])) step = areas[i++] - next;
            Area expected = next + 2 * step;
            while (step != 0 && i < count && isPartial(areas[i]) &&
                   magnitudeOf(areas[i] - expected) <= kRunTolerance) {
                expected += step;
                ++i;
            }
        }
        const int32_t end = i;
        if (end - start > 2 && i < count && isPartial(areas[i])) tail = areas[i++];
        drawPartial(first + start, end - start, areas[start], next, step * 256, tail);
    }
}

} // namespace Graphics2D
} // namespace KAVO
