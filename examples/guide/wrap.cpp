// SPDX-License-Identifier: MIT
#include "guide/Recipes.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

Fixed drawParagraph(MMContext2D& context, const char* utf8, Fixed left, Fixed top, Fixed width)
{
    MMText text(utf8);
    context.fillPaint.paintType = kPaintSolid;
    context.fillPaint.paintColour = 0xFF222222;
    context.fontSize = 12_fx;
    context.lineHeight = 16_fx;
    context.wrapWidth = width;
    context.wrapOffsetX = left;
    context.penX = 0;
    context.penY = top + context.fontSize; // the first baseline
    context.drawWrappedText(text.units(), 0, 0);
    return context.penY - context.fontSize; // drawing leaves the pen on the line below
}
