// SPDX-License-Identifier: MIT
// From coverage to strip fillers.
#include "graphics2d/raster/RowPainter.h"

#include "graphics2d/Redirection.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// How far an area may lie from the arithmetic run it is drawn with: a tenth of a weight.
constexpr Area kRunTolerance = 26;

// Coverage from which an opaque colour has a weight of 128 or more: 128 * 256 / 255, rounded up.
constexpr Coverage kHalfWeight = 0x80000000u / 255 + 1;

RunLimits limitsFor(const MMPaint& paint)
{
    if (paint.paintType != kPaintLinearGradient) return RunLimits::kNone;
    return paint.paintHasAlpha != 0 ? RunLimits::kThreePixels : RunLimits::kHalfWeight;
}

} // namespace

RowPainter::RowPainter(MMContext2D& context, const PixelBox& visible)
    : context_(context), visible_(visible), span_(chooseSpanFiller(context)),
      edge_(chooseEdgeFiller(context)), opacity_(context.currentPaint.paintOpacity),
      limits_(limitsFor(context.currentPaint)),
      edgeIgnoresCoverage_(context.currentPaint.paintType == kPaintXOR ||
                           context.currentPaint.paintType == kPaintPicking)
{
    if constexpr (kHasLayers)
        if (isRedirected(context)) redirect();
    const ColourFillers& colours = coloursOf(context);
    colourRun_ = edge_ == colours.translucent ? colours.run : nullptr;
    fillsColour_ = span_.filler == colours.opaque;
    const PixelBox drawable = drawableBox(context);
    drawableStart_ = fixFromInt(drawable.left);
    drawableEnd_ = fixFromInt(drawable.right);
}

void RowPainter::beginRow(int32_t row, int32_t rows)
{
    const MMPixmap& target = context_.target;
    context_.spanRow = row;
    context_.spanRows = static_cast<uint32_t>(rows);
    context_.spanPixels = targetRow(target, row, target.rowBytes);
}

void RowPainter::drawWhole(int32_t first, int32_t end)
{
    constexpr int32_t kFewPixels = 8;
    if (fillsColour_ && end - first < kFewPixels && context_.spanRows == 1) {
        const Pixel colour = context_.currentPaint.paintColour;
        Pixel* const pixels = context_.spanPixels;
        for (int32_t column = first; column < end; ++column)
            pixels[column] = colour;
        return;
    }
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
        const Coverage coverage = area * opacity_;
        if (blendsColour())
            blendColour(first, end - first, coverage, coverage, 0);
        else
            drawAny({first, end - first, coverage, coverage, 0, 0});
    }
}

void RowPainter::drawRun(const Run& run)
{
    const int32_t end = run.first + run.count;
    context_.spanStart = fixFromInt(run.first);
    context_.spanEnd = fixFromInt(end + (edgeIgnoresCoverage_ && run.tail > 0 ? 1 : 0));
    context_.spanCoverage = run.start;
    context_.spanCoverageNext = run.next;
    context_.spanCoverageStep = run.step;
    context_.spanTailCoverage = run.tail;
    edge_(context_);
}

void RowPainter::drawPartial(int32_t first, int32_t count, Area start, Area next, int32_t step,
                             Area tail)
{
    const Coverage startCoverage = start * opacity_;
    const Coverage tailCoverage = tail * opacity_;
    if (count == 1 && blendsColour()) { // two pixels are as good as one and a tail
        blendColour(first, tail > 0 ? 2 : 1, startCoverage, tailCoverage, 0);
        return;
    }
    const Run run = {first,
                     count,
                     startCoverage,
                     next * opacity_,
                     static_cast<Coverage>(static_cast<int64_t>(step) * opacity_ >> 8),
                     tailCoverage};
    if (!blendsColour()) return drawAny(run);
    blendColour(first, count, run.start, run.next, run.step);
    if (tail > 0) blendColour(first + count, 1, run.tail, 0, 0);
}

[[gnu::noinline]] void RowPainter::drawAny(const Run& run)
{
    if (edge_ == nullptr) return;
    if (limits_ == RunLimits::kHalfWeight)
        drawInHalves(run);
    else if (limits_ == RunLimits::kThreePixels)
        drawInThrees(run);
    else
        drawRun(run);
}

// Some of the run's pixels; with the last of them comes its tail.
RowPainter::Run RowPainter::Run::part(int32_t from, int32_t length) const
{
    return {first + from, length, at(from), at(from + 1), step, from + length == count ? tail : 0};
}

// In two parts, where the pixels from the second on pass half of the weights.
void RowPainter::drawInHalves(const Run& run)
{
    int32_t split = run.count; // the first pixel on the other side
    if (run.step > 0 && run.next < kHalfWeight)
        split = 1 + (kHalfWeight - run.next + run.step - 1) / run.step;
    else if (run.step < 0 && run.next >= kHalfWeight)
        split = 1 + (run.next - kHalfWeight) / -run.step + 1;
    if (split >= run.count) {
        drawRun(run);
        return;
    }
    drawRun(run.part(0, split));
    drawRun(run.part(split, run.count - split));
}

// Three pixels at a time and a fourth as their tail, which the filler computes anew.
void RowPainter::drawInThrees(const Run& run)
{
    for (int32_t i = 0; i < run.count; i += 4) {
        const int32_t left = run.count - i;
        Run part = run.part(i, std::min(left, 3));
        if (left > 3) part.tail = run.at(i + 3);
        drawRun(part);
        if (left == 4 && run.tail > 0) drawRun({run.first + run.count, 1, run.tail, 0, 0, 0});
    }
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
