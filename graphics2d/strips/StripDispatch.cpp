// SPDX-License-Identifier: MIT
// From the current paint to the strip filler that draws its spans.
#include "graphics2d/strips/StripDispatch.h"

#include "graphics2d/strips/SolidStrip.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kTranslucentBit = 1; // set in a paint code whose opacity is below 255

// A plain call costs short spans less than one through a pointer to a member.
template <void (MMContext2D::*filler)()>
void call(MMContext2D& context)
{
    (context.*filler)();
}

constexpr StripFiller kPatternFillers[] = {call<&MMContext2D::drawPatternStrip>,
                                           call<&MMContext2D::drawBiLinPatternStrip>,
                                           call<&MMContext2D::drawBiCubPatternStrip>};
constexpr StripFiller kTranslucentPatternFillers[] = {call<&MMContext2D::drawPatternTStrip>,
                                                      call<&MMContext2D::drawBiLinPatternTStrip>,
                                                      call<&MMContext2D::drawBiCubPatternTStrip>};

StripFiller opaqueColour(const MMContext2D& context)
{
    return context.refined != 0 ? drawRefinedColour : drawClassicColour;
}

StripFiller translucentColour(const MMContext2D& context)
{
    return context.refined != 0 ? drawTranslucentRefinedColour : drawTranslucentClassicColour;
}

StripFiller byFilter(const StripFiller (&fillers)[3], uint8_t patternFilter)
{
    return patternFilter <= kFilterBicubic ? fillers[patternFilter] : nullptr;
}

} // namespace

SpanFiller chooseSpanFiller(const MMContext2D& context)
{
    const MMPaint& paint = context.currentPaint;
    if (paint.paintType == kPaintSource) {
        if (paint.sourceIsOpaque != 0 && paint.paintOpacity == 255)
            return {call<&MMContext2D::drawSourceStrip>, false};
        return {call<&MMContext2D::drawSourceTStrip>, true};
    }
    // Paint types beyond the last must not reach the sum below: the largest would wrap to solid.
    if (paint.paintType > kPaintPicking + kTranslucentBit) return {nullptr, false};
    switch (paint.paintType + (paint.paintOpacity < 255 ? kTranslucentBit : 0)) {
    case kPaintSolid:
        // By the refined rules the colour's own alpha is an opacity.
        if (context.refined == 0 || paint.paintColour >> 24 == 0xFF)
            return {opaqueColour(context), false};
        [[fallthrough]];
    case kPaintSolid + kTranslucentBit:
        return {translucentColour(context), true};
    case kPaintXOR:
    case kPaintXOR + kTranslucentBit:
        return {call<&MMContext2D::drawSolidXORStrip>, false};
    case kPaintLinearGradient:
        if (paint.paintHasAlpha == 0) return {call<&MMContext2D::drawLinearGradientStrip>, false};
        [[fallthrough]];
    case kPaintLinearGradient + kTranslucentBit:
        return {call<&MMContext2D::drawLinearGradientTStrip>, true};
    case kPaintRadialGradient:
        if (paint.paintHasAlpha == 0) return {call<&MMContext2D::drawRadialGradientStrip>, false};
        [[fallthrough]];
    case kPaintRadialGradient + kTranslucentBit:
        return {call<&MMContext2D::drawRadialGradientTStrip>, true};
    case kPaintPattern:
        if (paint.patternHasAlpha == 0)
            return {byFilter(kPatternFillers, context.patternFilter), false};
        [[fallthrough]];
    case kPaintPattern + kTranslucentBit:
        return {byFilter(kTranslucentPatternFillers, context.patternFilter), true};
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
        return translucentColour(context);
    case kPaintXOR:
        return call<&MMContext2D::drawSolidXORStrip>;
    case kPaintLinearGradient:
        return call<&MMContext2D::drawLinearGradientTStrip>;
    case kPaintRadialGradient:
        return call<&MMContext2D::drawRadialGradientTStrip>;
    case kPaintPattern:
        return byFilter(kTranslucentPatternFillers, context.patternFilter);
    case kPaintPicking:
        return call<&MMContext2D::drawPickingStrip>;
    case kPaintSource:
        return call<&MMContext2D::drawSourceTStrip>;
    default:
        return nullptr;
    }
}

} // namespace Graphics2D
} // namespace KAVO
