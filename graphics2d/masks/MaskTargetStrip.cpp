// SPDX-License-Identifier: MIT
// Spans drawn into a mask: whatever the paint, its coverage times its opacity; and rows of layers.
#include "graphics2d/masks/LevelBlending.h"
#include "graphics2d/masks/MaskedStrip.h"
#include "graphics2d/strips/Span.h"

#include <cstring>

namespace KAVO {
namespace Graphics2D {

namespace {

// By the refined rules the alpha of a colour is an opacity.
uint32_t maskAlpha(const MMContext2D& context)
{
    const MMPaint& paint = context.currentPaint;
    const bool counts = context.refined != 0 && paint.paintType == kPaintSolid;
    return counts ? paint.paintColour >> 24 : kWholeLevel;
}

const uint8_t* clipRow(const MMContext2D& context)
{
    return context.clipMask != nullptr ? maskRow(*context.clipMask, context.spanRow) : nullptr;
}

// Calls add(column, coverage) for the columns of the span and its tail; the coverage is 8.8.
template <class Add>
[[gnu::always_inline]] inline void forEachOfRun(const MMContext2D& context, Add add)
{
    const int32_t end = fixFloor(context.spanEnd);
    Coverage coverage = context.spanCoverage;
    Coverage next = context.spanCoverageNext;
    const Coverage step = context.spanCoverageStep; // a store of levels may alias the member
    for (int32_t column = fixFloor(context.spanStart); column < end; ++column) {
        add(column, coarseCoverage(coverage));
        coverage = next;
        next = wrapAdd(next, step);
    }
    if (context.spanTailCoverage > 0) add(end, coarseCoverage(context.spanTailCoverage));
}

// Coverage times the paint's alpha, through the clip if there is one.
[[gnu::noinline]] void drawWeighedRun(const MMContext2D& context, uint32_t alpha)
{
    uint8_t* const levels = maskRow(*context.maskTarget, context.spanRow);
    const uint8_t* const clip = clipRow(context);
    forEachOfRun(context, [=](int32_t column, uint32_t coverage) {
        if (alpha != kWholeLevel) coverage = shareOfLevel(coverage, alpha);
        if (clip != nullptr) coverage = shareOfLevel(coverage, clip[column]);
        addLevel(levels[column], coverage);
    });
}

} // namespace

void drawSpanIntoMask(MMContext2D& context)
{
    const int32_t first = fixFloor(context.spanStart);
    const int32_t count = spanLength(context);
    uint8_t* levels = maskRow(*context.maskTarget, context.spanRow) + first;
    const uint8_t* clip = clipRow(context);
    const uint32_t alpha = maskAlpha(context);
    if (clip == nullptr && (alpha & context.currentPaint.paintOpacity) == kWholeLevel) {
        std::memset(levels, kWholeLevel, static_cast<size_t>(count));
        return;
    }
    const uint32_t opacity = opacityWith(context.currentPaint.paintOpacity, alpha); // 8.8
    for (int32_t i = 0; i < count; ++i)
        addLevel(levels[i], clip != nullptr ? shareOfLevel(opacity, clip[first + i]) : opacity);
}

void drawRunIntoMask(MMContext2D& context)
{
    const uint32_t alpha = maskAlpha(context);
    if (context.clipMask != nullptr || alpha != kWholeLevel) return drawWeighedRun(context, alpha);
    uint8_t* const levels = maskRow(*context.maskTarget, context.spanRow);
    forEachOfRun(context,
                 [=](int32_t column, uint32_t coverage) { addLevel(levels[column], coverage); });
}

void addAlphas(uint8_t* to, const Pixel* drawn, const uint8_t* levels, uint32_t opacity,
               int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t coverage = opacityWith(opacity, drawn[i] >> 24);
        addLevel(to[i], levels != nullptr ? shareOfLevel(coverage, levels[i]) : coverage);
    }
}

} // namespace Graphics2D
} // namespace KAVO
