// From coverage to strip fillers.
#include "graphics2d/RowPainter.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

RowPainter::RowPainter(MMContext2D& context, const PixelBox& visible)
    : context_(context), visible_(visible), span_(chooseSpanFiller(context)),
      edge_(chooseEdgeFiller(context)), opacity_(context.currentPaint.paintOpacity),
      edgeIgnoresCoverage_(context.currentPaint.paintType == kPaintXOR ||
                           context.currentPaint.paintType == kPaintPicking)
{
}

void RowPainter::beginRow(int32_t row)
{
    const MMPixmap& target = context_.target;
    context_.spanRow = row;
    uint8_t* bytes = reinterpret_cast<uint8_t*>(target.pixels);
    bytes += static_cast<std::size_t>(row) * target.rowBytes;
    context_.spanPixels = reinterpret_cast<Pixel*>(bytes);
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

void RowPainter::add(int32_t first, int32_t end, Area area)
{
    if (area < kLeastArea || first >= end) return;
    if (area >= kMostArea) {
        flushPartial();
        if (wholeEnd_ != first) {
            flushWhole();
            wholeFirst_ = first;
        }
        wholeEnd_ = end;
        return;
    }
    flushWhole();
    if (runFirst_ + runCount_ != first) flushPartial();
    while (first < end) {
        const bool constant = runCount_ > 2 && runStep_ == 0 && runLast_ == area;
        if (constant) {
            runCount_ += end - first;
            return;
        }
        addPartial(first++, area);
    }
}

void RowPainter::addPartial(int32_t column, Area area)
{
    switch (runCount_) {
    case 0:
        runFirst_ = column;
        runStart_ = area;
        break;
    case 1:
        runNext_ = area;
        break;
    case 2:
        runStep_ = area - runNext_;
        break;
    default:
        if (area == runLast_ + runStep_) break;
        drawPartial(runFirst_, runCount_, runStart_, runNext_, runStep_ * 256, area);
        runCount_ = 0;
        return;
    }
    runLast_ = area;
    ++runCount_;
}

void RowPainter::flushWhole()
{
    drawWhole(wholeFirst_, wholeEnd_);
    wholeFirst_ = wholeEnd_ = 0;
}

void RowPainter::flushPartial()
{
    if (runCount_ == 0) return;
    drawPartial(runFirst_, runCount_, runStart_, runNext_, runStep_ * 256, 0);
    runCount_ = 0;
}

} // namespace Graphics2D
} // namespace KAVO
