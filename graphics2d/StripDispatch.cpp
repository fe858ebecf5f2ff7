// From the current paint to the strip filler that draws its spans.
#include "graphics2d/StripDispatch.h"

namespace KAVO {
namespace Graphics2D {

SpanFiller chooseSpanFiller(const MMContext2D& context)
{
    const MMPaint& paint = context.currentPaint;
    const bool translucent = paint.paintOpacity < 255;
    switch (paint.paintType + (translucent ? 1u : 0u)) {
    case kPaintSolid:
        return {&MMContext2D::drawSolidStrip, false};
    case kPaintSolid + 1:
        return {&MMContext2D::drawSolidTStrip, true};
    case kPaintXOR:
    case kPaintXOR + 1:
        return {&MMContext2D::drawSolidXORStrip, false};
    case kPaintPicking:
    case kPaintPicking + 1:
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
    case kPaintPicking:
        return &MMContext2D::drawPickingStrip;
    default:
        return nullptr;
    }
}

} // namespace Graphics2D
} // namespace KAVO
