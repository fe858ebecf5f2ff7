// SPDX-License-Identifier: MIT
// From the current paint to the strip filler that draws its spans.
#include "graphics2d/strips/StripDispatch.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kTranslucentBit = 1; // set in a paint code whose opacity is below 255

// Rows after the first that are drawn at once: of whole pixels as many as SpanFiller can say; with
// partial ones few enough for those at their sides to stay at hand.
constexpr uint8_t kMoreSharp = 255;
constexpr uint8_t kMoreSmooth = 15;

// A plain call costs short spans less than one through a pointer to a member.
template <void (MMContext2D::*filler)()>
void call(MMContext2D& context)
{
    (context.*filler)();
}

const PaintFillers kNoFillers = {nullptr, nullptr};

const PaintFillers& patternsOf(const MMContext2D& context)
{
    return context.patternFilter <= kFilterBicubic ? context.level->patterns[context.patternFilter]
                                                   : kNoFillers;
}

} // namespace

SpanFiller chooseSpanFiller(const MMContext2D& context)
{
    const MMPaint& paint = context.currentPaint;
    if (paint.paintType == kPaintSource) {
        if (paint.sourceIsOpaque != 0 && paint.paintOpacity == 255)
            return {context.level->source.opaque, false};
        return {context.level->source.translucent, true};
    }
    // Paint types beyond the last must not reach the sum below: the largest would wrap to solid.
    if (paint.paintType > kPaintPicking + kTranslucentBit) return {nullptr, false};
    switch (paint.paintType + (paint.paintOpacity < 255 ? kTranslucentBit : 0)) {
    case kPaintSolid:
        // By the refined rules the colour's own alpha is an opacity.
        if (context.refined == 0 || paint.paintColour >> 24 == 0xFF)
            return {coloursOf(context).opaque, false, kMoreSharp, kMoreSmooth};
        [[fallthrough]];
    case kPaintSolid + kTranslucentBit:
        return {coloursOf(context).translucent, true, kMoreSharp, kMoreSmooth};
    case kPaintXOR:
    case kPaintXOR + kTranslucentBit:
        return {call<&MMContext2D::drawSolidXORStrip>, false};
    case kPaintLinearGradient:
        if (paint.paintHasAlpha == 0) return {context.level->linearGradient.opaque, false};
        [[fallthrough]];
    case kPaintLinearGradient + kTranslucentBit:
        return {context.level->linearGradient.translucent, true};
    case kPaintRadialGradient:
        if (paint.paintHasAlpha == 0) return {context.level->radialGradient.opaque, false};
        [[fallthrough]];
    case kPaintRadialGradient + kTranslucentBit:
        return {context.level->radialGradient.translucent, true};
    case kPaintPattern:
        if (paint.patternHasAlpha == 0) return {patternsOf(context).opaque, false, kMoreSharp};
        [[fallthrough]];
    case kPaintPattern + kTranslucentBit:
        return {patternsOf(context).translucent, true, kMoreSharp};
    case kPaintPicking:
    case kPaintPicking + kTranslucentBit:
        return {call<&MMContext2D::drawPickingStrip>, false};
    default:
        return {nullptr, false};
    }
}

StripFiller chooseEdgeFiller(const MMContext2D& context)
{
    switch (context.currentPaint.paintType) {
    case kPaintSolid:
        return coloursOf(context).translucent;
    case kPaintXOR:
        return call<&MMContext2D::drawSolidXORStrip>;
    case kPaintLinearGradient:
        return context.level->linearGradient.translucent;
    case kPaintRadialGradient:
        return context.level->radialGradient.translucent;
    case kPaintPattern:
        return patternsOf(context).translucent;
    case kPaintPicking:
        return call<&MMContext2D::drawPickingStrip>;
    case kPaintSource:
        return context.level->source.translucent;
    default:
        return nullptr;
    }
}

} // namespace Graphics2D
} // namespace KAVO
