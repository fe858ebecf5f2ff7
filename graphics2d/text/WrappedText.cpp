// SPDX-License-Identifier: MIT
// Drawing a paragraph line by line, with its underline.
#include "graphics2d/BoundsUnion.h"
#include "graphics2d/MMContext2D.h"
#include "util/WideString.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kDecorationUnderline = 1;

// Strokes a line of the width below the text that starts at (x, y), in the text's colour, and adds
// its bounds to the text's. The stroke settings stay behind.
void drawUnderline(MMContext2D& context, Fixed x, Fixed y, Fixed width)
{
    context.currentPaint =
        context.fillPaint.paintType != kPaintNone ? context.fillPaint : context.strokePaint;
    context.strokePaint.paintColour = context.currentPaint.paintColour;
    context.strokePaint.paintType = kPaintSolid;
    context.strokeHalfWidth = context.lineHeight >> 4;
    if (context.strokeHalfWidth == 0) context.strokeHalfWidth = context.fontSize / 24;
    if (width == 0) return; // no dots from round or square caps under empty lines

    BoundsUnion bounds;
    bounds.addBoundsOf(context);
    const Fixed below = wrapAdd(y, context.lineHeight >> 3);
    MMPoint2D ends[2] = {{x, below}, {wrapAdd(x, width), below}};
    MMLinkPath path = {ends, 2};
    if (context.dashArray != nullptr)
        context.drawDashArray(&path, 1, 0);
    else
        context.drawPolyline(&path, 1, 0);
    if (context.accumulateBounds == 0) return;
    bounds.addBoundsOf(context);
    bounds.storeTo(context);
}

} // namespace

void MMContext2D::drawWrappedText(uint16_t* text, uint8_t, uint8_t)
{
    if (fontMetrics == nullptr || text == nullptr) return;
    MMTextLayout* layout = createTextLayout(text, fixFloor(wrapWidth));
    if (layout == nullptr) return;
    BoundsUnion().storeTo(*this);

    const uint8_t draw = drawSuppressed == 0 ? 1 : 0;
    for (uint32_t i = 0; i < layout->lineCount; ++i) {
        uint16_t* line = layout->lines[i];
        penX = wrapAdd(penX, wrapOffsetX);
        penY = wrapAdd(penY, wrapOffsetY);
        const MMPoint2D start = {penX, penY};
        ParseText(line, line);
        const uint16_t length = static_cast<uint16_t>(MMwsstrlen(line));
        renderText(line, length, draw, 0);
        if (textDecoration == kDecorationUnderline)
            drawUnderline(*this, start.x, start.y, getTextWidth(line, length));
        penX = wrapSub(penX, wrapOffsetX);
        penY = wrapSub(penY, wrapOffsetY);
        newLine();
        newLineFlag = 0;
    }
    destroyTextLayout(layout);
}

} // namespace Graphics2D
} // namespace KAVO
