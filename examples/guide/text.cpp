// SPDX-License-Identifier: MIT
#include "guide/Recipes.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

void drawLabels(MMContext2D& context)
{
    context.fillPaint.paintType = kPaintSolid;
    context.fillPaint.paintColour = 0xFF222222;
    context.fontSize = 20_fx;
    context.textAnchor = kAnchorMiddle;
    context.drawText(MMText("Grüße").units(), 100_fx, 30_fx); // baseline at y = 30

    const uint16_t arrow = u'→';
    MMText more(hasGlyph(context, arrow) ? "more →" : "more >");
    context.fontSize = 14_fx;
    context.textAnchor = kAnchorStart;
    context.drawText(more.units(), 10_fx, 60_fx);
    const Fixed width = context.getTextWidth(more.units(), static_cast<uint16_t>(more.length()));
    MMPathBuilder line; // below the text
    line.rect(10_fx, 63_fx, width, 1_fx);
    context.drawPath(line.words());

    const MMContextState state(context);
    context.transform.rotate(-20_fx);
    context.transform.translate(60_fx, 112_fx);
    context.fontWeight = 7; // bold
    context.updateFont();
    context.drawText(MMText("uphill").units(), 0, 0);
    context.fontWeight = 4;
    context.updateFont();
}
