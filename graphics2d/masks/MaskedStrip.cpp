// SPDX-License-Identifier: MIT
// A row seen through a mask is cut into stretches: hidden ones are skipped, those of full levels
// are drawn by the paint's own filler, and only what lies between is weighed pixel by pixel. There
// a colour is blended with coverage, opacity and level in one weight; any other paint is drawn
// aside, over a copy of the target where it shows some of it, and the target is then moved to that
// by the levels. So every paint keeps the rules of its mode, and a mask that hides nothing changes
// nothing.
#include "graphics2d/masks/MaskedStrip.h"

#include "graphics2d/OutOfMemory.h"
#include "graphics2d/masks/LevelBlending.h"
#include "graphics2d/strips/SolidStrip.h"
#include "graphics2d/strips/Span.h"
#include "memory/ScratchArray.h"

#include <algorithm>
#include <cstring>

namespace KAVO {
namespace Graphics2D {

namespace {

// --- Levels -------------------------------------------------------------------------------------

constexpr int32_t kLane = 8;         // levels at a time
constexpr uint32_t kHalfLevel = 128; // from which on a pixel that cannot be weighed is taken

// The end of the columns from `from` on before eight that are all hidden or all visible. The first
// is neither.
int32_t endOfMixture(const MMContext2D& context, const uint8_t* levels, int32_t from, int32_t end)
{
    // Often all are alike.
    if (end - from > 1 && levels[from + 1] == levels[from])
        from = context.level->endOfLevel(levels, from, end, levels[from]);
    for (uint64_t eight; end - from >= kLane; from += kLane) {
        std::memcpy(&eight, levels + from, sizeof eight);
        if (eight == 0 || eight == ~uint64_t{0}) return from;
    }
    return end;
}

// a * b / 255 of a coverage, rounded.
Coverage coverageThrough(Coverage coverage, uint32_t level)
{
    const uint32_t clamped = static_cast<uint32_t>(std::clamp(coverage, 0, 0x00FF0000));
    return static_cast<Coverage>((clamped * level + 127) / kWholeLevel);
}

// --- Through a mask ----------------------------------------------------------------------------

const uint8_t* clipLevels(const MMContext2D& context)
{
    return maskRow(*context.clipMask, context.spanRow);
}

// Points the context at columns of its span, or at a copy of them, until the scope ends.
class PartOfSpan {
public:
    explicit PartOfSpan(MMContext2D& context)
        : context_(context), pixels_(context.spanPixels), start_(context.spanStart),
          end_(context.spanEnd)
    {
    }
    ~PartOfSpan()
    {
        context_.spanPixels = pixels_;
        context_.spanStart = start_;
        context_.spanEnd = end_;
    }
    PartOfSpan(const PartOfSpan&) = delete;
    PartOfSpan& operator=(const PartOfSpan&) = delete;

    int32_t first() const { return fixFloor(start_); }
    int32_t end() const { return fixFloor(end_); }
    Pixel* at(int32_t column) const { return pixels_ + column; }

    // The part keeps the fraction of the span's start, from which some images are sampled.
    void select(int32_t first, int32_t end)
    {
        const int32_t fraction = static_cast<int32_t>(fixFraction(start_));
        context_.spanStart = fixFromInt(first) + fraction;
        context_.spanEnd = fixFromInt(end) + fraction;
    }

    // Lets the columns from first on be drawn into a copy.
    void drawInto(Pixel* copy, int32_t first)
    {
        context_.spanPixels = reinterpret_cast<Pixel*>(reinterpret_cast<uintptr_t>(copy) -
                                                       static_cast<uintptr_t>(int64_t{first} * 4));
    }
    void drawIntoTarget() { context_.spanPixels = pixels_; }

private:
    MMContext2D& context_;
    Pixel* const pixels_;
    const Fixed start_;
    const Fixed end_;
};

// Pixels that are drawn aside at a time; one more is the right-hand neighbour of the last.
constexpr int32_t kAsideLength = 1024;
constexpr int32_t kAsideRun = 511;

// Draws the columns from first to end - 1, which are selected, by draw() into `aside`, which has
// room for one more, and moves the target to that by the levels. Unless the paint hides it, what
// the target has there lies below.
template <class Draw>
void drawAside(MMContext2D& context, PartOfSpan& part, int32_t first, int32_t end,
               const uint8_t* levels, Pixel* aside, bool hides, Draw draw)
{
    Pixel* const pixels = part.at(first);
    const int32_t count = end - first;
    if (!hides) {
        std::memcpy(aside, pixels, static_cast<size_t>(count) * sizeof(Pixel));
        aside[count] = pixels[end < context.target.width ? count : count - 1];
    }
    part.drawInto(aside, first);
    draw();
    part.drawIntoTarget();
    context.level->moveByLevels(pixels, aside, levels + first, count);
}

void invertByLevels(Pixel* pixels, Pixel colour, const uint8_t* levels, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        if (levels[i] >= kHalfLevel) pixels[i] ^= colour;
}

// Whether the paint writes every pixel of a span and looks at none.
bool hidesTarget(const MMContext2D& context, const SpanFiller& paint)
{
    if (paint.flatCoverage) return false;
    switch (context.currentPaint.paintType) {
    case kPaintLinearGradient:
    case kPaintRadialGradient:
        return context.currentPaint.gradientStopCount != 0;
    case kPaintSource:
        return context.currentPaint.sourceFunction != nullptr;
    default:
        return false;
    }
}

// A stretch of a span with mixed levels.
void drawMixture(MMContext2D& context, const SpanFiller& paint, PartOfSpan& part, int32_t first,
                 int32_t end, const uint8_t* levels)
{
    switch (context.currentPaint.paintType) {
    case kPaintSolid:
        return context.level->tintByLevels(part.at(first), tintOf(context), levels + first,
                                           end - first);
    case kPaintXOR:
        return invertByLevels(part.at(first), context.currentPaint.paintColour, levels + first,
                              end - first);
    default:
        const auto draw = [&] { drawSpan(context, paint); };
        const bool hides = hidesTarget(context, paint);
        Pixel aside[kAsideLength + 1];
        for (int32_t next; first < end; first = next) {
            next = std::min(end, first + kAsideLength);
            part.select(first, next);
            drawAside(context, part, first, next, levels, aside, hides, draw);
        }
    }
}

// A span in one piece, for paints whose pixels depend on where their span starts.
void drawUncut(MMContext2D& context, const SpanFiller& paint, PartOfSpan& part,
               const uint8_t* levels)
{
    ScratchArray<Pixel> aside(context.scratchStack,
                              static_cast<uint32_t>(part.end() - part.first()) + 1);
    if (!aside) return noteOutOfMemory(context);
    drawAside(context, part, part.first(), part.end(), levels, aside.data(),
              hidesTarget(context, paint), [&] { drawSpan(context, paint); });
}

bool dependsOnStart(const MMContext2D& context)
{
    const uint32_t paint = context.currentPaint.paintType;
    return context.refined == 0 && paint != kPaintSolid && paint != kPaintXOR &&
           paint != kPaintSource;
}

void drawSpanThroughMask(MMContext2D& context)
{
    const SpanFiller& paint = context.ownFillers->span;
    const uint8_t* levels = clipLevels(context);
    PartOfSpan part(context);
    const int32_t end = part.end();
    if (part.first() < end && dependsOnStart(context)) {
        if (context.level->endOfLevel(levels, part.first(), end, 0) == end) return;
        if (context.level->endOfLevel(levels, part.first(), end, kWholeLevel) == end)
            return drawSpan(context, paint);
        return drawUncut(context, paint, part, levels);
    }
    for (int32_t first = part.first(), next; first < end; first = next) {
        if (levels[first] == 0) {
            next = context.level->endOfLevel(levels, first, end, 0);
        } else if (levels[first] == kWholeLevel) {
            next = context.level->endOfLevel(levels, first, end, kWholeLevel);
            part.select(first, next);
            drawSpan(context, paint);
        } else {
            next = endOfMixture(context, levels, first, end);
            drawMixture(context, paint, part, first, next, levels);
        }
    }
}

// Calls draw(pixels, levels) for all rows of the span, both from column 0 on.
template <class Draw>
void forEachRow(const MMContext2D& context, Draw draw)
{
    Pixel* pixels = context.spanPixels;
    const uint8_t* levels = clipLevels(context);
    for (uint32_t rows = context.spanRows; rows > 0; --rows) {
        draw(pixels, levels);
        pixels = pixelBelow(pixels, context.target.rowBytes);
        levels += context.clipMask->rowBytes;
    }
}

// By the levels alone: whole ones are the colour itself.
void drawOpaqueColourThroughMask(MMContext2D& context)
{
    const Tint tint = tintOf(context);
    const int32_t first = fixFloor(context.spanStart);
    const int32_t count = spanLength(context);
    forEachRow(context, [=, &context](Pixel* pixels, const uint8_t* levels) {
        context.level->tintByLevels(pixels + first, tint, levels + first, count);
    });
}

template <class Colour>
void drawColourRun(const MMContext2D& context, Pixel* pixels, const uint8_t* levels)
{
    using Rule = typename Colour::Rule;
    const Colour colour(context.currentPaint.paintColour);
    const auto blend = [&](int32_t column, Coverage coverage) {
        Pixel& pixel = pixels[column];
        const uint32_t weight = colour.weightOf(coverageThrough(coverage, levels[column]));
        pixel = blendPixel<Rule>(pixel, colour.source, weight);
    };
    CoverageSequence coverage(context);
    const int32_t end = fixFloor(context.spanEnd);
    for (int32_t column = fixFloor(context.spanStart); column < end; ++column) {
        blend(column, coverage.current());
        coverage.advance(1);
    }
    if (context.spanTailCoverage > 0) blend(end, context.spanTailCoverage);
}

void drawPaintRun(MMContext2D& context, const uint8_t* levels)
{
    const StripFiller paint = context.ownFillers->edge;
    CoverageSequence coverage(context);
    const Coverage tail = context.spanTailCoverage;
    PartOfSpan part(context);
    const int32_t end = part.end();
    Pixel aside[kAsideRun + 2]; // with the tail
    for (int32_t first = part.first(), next; first < end; first = next) {
        next = std::min(end, first + kAsideRun);
        const bool takesTail = next == end && tail > 0;
        part.select(first, next);
        context.spanCoverage = coverage.current();
        context.spanCoverageNext = coverage.next();
        context.spanCoverageStep = coverage.step();
        context.spanTailCoverage = takesTail ? tail : 0;
        coverage.advance(next - first);
        drawAside(context, part, first, next + (takesTail ? 1 : 0), levels, aside, false,
                  [&] { paint(context); });
    }
}

void drawRunThroughMask(MMContext2D& context)
{
    const uint8_t* levels = clipLevels(context);
    switch (context.currentPaint.paintType) {
    case kPaintSolid:
        return forEachRow(context, [&](Pixel* pixels, const uint8_t* rowLevels) {
            context.refined != 0 ? drawColourRun<RefinedColour>(context, pixels, rowLevels)
                                 : drawColourRun<ClassicColour>(context, pixels, rowLevels);
        });
    case kPaintXOR:
        invertByLevels(spanFirstPixel(context), context.currentPaint.paintColour,
                       levels + fixFloor(context.spanStart), spanLength(context));
        return;
    default:
        drawPaintRun(context, levels);
    }
}

// --- Picking ------------------------------------------------------------------------------------

bool shows(const MMMask* mask, int32_t column, int32_t row)
{
    if (mask == nullptr) return true;
    const PixelBox box = boxOf(*mask);
    return column >= box.left && column < box.right && row >= box.top && row < box.bottom &&
           maskRow(*mask, row)[column] >= kHalfLevel;
}

void pickThroughMasks(MMContext2D& context)
{
    const int32_t column = fixFloor(context.pickX);
    const int32_t row = context.spanRow;
    if (!shows(context.clipMask, column, row)) return;
    for (const MMLayerSurface* layer = context.layer; layer != nullptr; layer = layer->outer)
        if (!shows(layer->outerMask, column, row)) return;
    context.drawPickingStrip();
}

} // namespace

int32_t hiddenRows(const MMContext2D& context, const PixelBox& box, BoxSide side)
{
    const MMMask& mask = *context.clipMask;
    const int32_t width = box.right - box.left;
    if (width <= 0) return 0;
    int32_t hidden = 0;
    constexpr int32_t kManyRows = 16; // where they follow each other without a gap
    for (int32_t rows = mask.rowBytes == static_cast<uint32_t>(width) ? kManyRows : 1; rows > 0;
         rows /= kManyRows)
        while (box.bottom - box.top - hidden >= rows) {
            const int32_t row =
                side == BoxSide::kTop ? box.top + hidden : box.bottom - hidden - rows;
            const uint8_t* const levels = maskRow(mask, row) + box.left;
            if (context.level->endOfLevel(levels, 0, rows * width, 0) != rows * width) break;
            hidden += rows;
        }
    return hidden;
}

SpanFiller maskedSpanFiller(const MMContext2D& context)
{
    if (context.currentPaint.paintType == kPaintPicking) return {pickThroughMasks, false};
    if (context.maskTarget != nullptr) return {drawSpanIntoMask, false};
    const SpanFiller& paint = context.ownFillers->span;
    if (context.currentPaint.paintType == kPaintSolid && !paint.flatCoverage)
        return {drawOpaqueColourThroughMask, false, paint.moreSharp, paint.moreSmooth};
    return {drawSpanThroughMask, false};
}

StripFiller maskedEdgeFiller(const MMContext2D& context)
{
    if (context.currentPaint.paintType == kPaintPicking) return pickThroughMasks;
    if (context.maskTarget != nullptr) return drawRunIntoMask;
    return context.ownFillers->edge != nullptr ? drawRunThroughMask : nullptr;
}

} // namespace Graphics2D
} // namespace KAVO
