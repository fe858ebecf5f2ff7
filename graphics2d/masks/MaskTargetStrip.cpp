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

// The opacity that the current paint has in a mask, 8.8.
uint32_t maskOpacity(const MMContext2D& context)
{
    return opacityWith(context.currentPaint.paintOpacity, maskAlpha(context));
}

} // namespace

void drawSpanIntoMask(MMContext2D& context)
{
    const int32_t first = fixFloor(context.spanStart);
    const int32_t count = spanLength(context);
    uint8_t* levels = maskRow(*context.maskTarget, context.spanRow) + first;
    const uint8_t* clip =
        context.clipMask != nullptr ? maskRow(*context.clipMask, context.spanRow) + first : nullptr;
    const uint32_t opacity = maskOpacity(context);
    if (clip == nullptr && opacity == kWholeAlpha) {
        std::memset(levels, kWholeLevel, static_cast<size_t>(count));
        return;
    }
    for (int32_t i = 0; i < count; ++i)
        addLevel(levels[i], clip != nullptr ? shareOfLevel(opacity, clip[i]) : opacity);
}

void drawRunIntoMask(MMContext2D& context)
{
    uint8_t* levels = maskRow(*context.maskTarget, context.spanRow);
    const uint8_t* clip =
        context.clipMask != nullptr ? maskRow(*context.clipMask, context.spanRow) : nullptr;
    const uint32_t alpha = maskAlpha(context);
    const auto add = [&](int32_t column, Coverage areaAndOpacity) {
        uint32_t coverage = coarseCoverage(areaAndOpacity);
        if (alpha != kWholeLevel) coverage = shareOfLevel(coverage, alpha);
        if (clip != nullptr) coverage = shareOfLevel(coverage, clip[column]);
        addLevel(levels[column], coverage);
    };
    CoverageSequence coverage(context);
    const int32_t end = fixFloor(context.spanEnd);
    for (int32_t column = fixFloor(context.spanStart); column < end; ++column) {
        add(column, coverage.current());
        coverage.advance(1);
    }
    if (context.spanTailCoverage > 0) add(end, context.spanTailCoverage);
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
