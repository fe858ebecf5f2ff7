// SPDX-License-Identifier: MIT
// From the current paint to the strip filler that draws its spans.
#include "graphics2d/strips/StripDispatch.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kTranslucentBit = 1; // set in a paint code whose opacity is below 255

constexpr StripFiller kPatternFillers[] = {&MMContext2D::drawPatternStrip,
                                           &MMContext2D::drawBiLinPatternStrip,
                                           &MMContext2D::drawBiCubPatternStrip};
constexpr StripFiller kTranslucentPatternFillers[] = {&MMContext2D::drawPatternTStrip,
                                                      &MMContext2D::drawBiLinPatternTStrip,
                                                      &MMContext2D::drawBiCubPatternTStrip};

StripFiller byFilter(const StripFiller (&fillers)[3], uint8_t patternFilter)
{
    return patternFilter <= kFilterBicubic ? fillers[patternFilter] : nullptr;
}

} // namespace

SpanFiller chooseSpanFiller(const MMContext2D& context)
{
    const MMPaint& paint = context.currentPaint;
    // Paint types beyond the last must not reach the sum below: the largest would wrap to solid.
    if (paint.paintType > kPaintPicking + kTranslucentBit) return {nullptr, false};
    switch (paint.paintType + (paint.paintOpacity < 255 ? kTranslucentBit : 0)) {
    case kPaintSolid:
        // By the refined rules the colour's own alpha is an opacity.
        if (context.refined == 0 || paint.paintColour >> 24 == 0xFF)
            return {&MMContext2D::drawSolidStrip, false};
        [[fallthrough]];
    case kPaintSolid + kTranslucentBit:
        return {&MMContext2D::drawSolidTStrip, true};
    case kPaintXOR:
    case kPaintXOR + kTranslucentBit:
        return {&MMContext2D::drawSolidXORStrip, false};
    case kPaintLinearGradient:
        if (paint.paintHasAlpha == 0) return {&MMContext2D::drawLinearGradientStrip, false};
        [[fallthrough]];
    case kPaintLinearGradient + kTranslucentBit:
        return {&MMContext2D::drawLinearGradientTStrip, true};
    case kPaintRadialGradient:
        if (paint.paintHasAlpha == 0) return {&MMContext2D::drawRadialGradientStrip, false};
        [[fallthrough]];
    case kPaintRadialGradient + kTranslucentBit:
        return {&MMContext2D::drawRadialGradientTStrip, true};
    case kPaintPattern:
        if (paint.patternHasAlpha == 0)
            return {byFilter(kPatternFillers, context.patternFilter), false};
        [[fallthrough]];
    case kPaintPattern + kTranslucentBit:
        return {byFilter(kTranslucentPatternFillers, context.patternFilter), true};
    case kPaintPicking:
    case kPaintPicking + kTranslucentBit:
        return {&MMContext2D::drawPickingStrip, false};
    default:
        return {nullptr, false};
    }
}

StripFiller chooseEdgeFiller(const MMContext2D& context)
{
    switch (context.currentPaint.paintType) {
    case kPaintSolid:
        return &MMContext2D::drawSolidTStrip;
    case kPaintXOR:
        return &MMContext2D::drawSolidXORStrip;
    case kPaintLinearGradient:
        return &MMContext2D::drawLinearGradientTStrip;
    case kPaintRadialGradient:
        return &MMContext2D::drawRadialGradientTStrip;
    case kPaintPattern:
        return byFilter(kTranslucentPatternFillers, context.patternFilter);
    case kPaintPicking:
        return &MMContext2D::drawPickingStrip;
    default:
        return nullptr;
    }
}

} // namespace Graphics2D
} // namespace KAVO
