// SPDX-License-Identifier: MIT
#include "guide/Recipes.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

void fillShapes(MMContext2D& context)
{
    context.antiAlias = 1;
    MMPathBuilder star; // crosses itself
    star.moveTo(60_fx, 10_fx).lineTo(90_fx, 102_fx).lineTo(12_fx, 45_fx);
    star.lineTo(108_fx, 45_fx).lineTo(30_fx, 102_fx).close();
    context.fillPaint.paintType = kPaintSolid;
    context.fillPaint.paintColour = 0xFF1D4E89;
    context.fillRule = kFillEvenOdd; // its middle stays empty
    context.drawPath(star.words());

    MMPathBuilder disc;
    disc.circle(130_fx, 60_fx, 45_fx);
    context.fillPaint.paintColour = 0xFFE09F3E;
    context.fillPaint.paintOpacity = 160; // of 255
    context.drawPath(disc.words());
}
