// SPDX-License-Identifier: MIT
// Drawing clipped to any shape.
#include "guide/Recipes.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

void drawClipped(MMContext2D& context)
{
    static uint8_t levels[kRecipeWidth * kRecipeHeight]; // one for each pixel of the rectangle
    MMMask clip = makeMask(levels, 0, 0, kRecipeWidth, kRecipeHeight);
    context.antiAlias = 1;
    context.maskTarget = &clip; // from here on shapes go into the mask, whatever their paint
    context.drawPath(MMPathBuilder().circle(60_fx, 60_fx, 50_fx).words());
    context.fontSize = 44_fx;
    context.drawText(MMText("clip").units(), 116_fx, 76_fx);
    context.maskTarget = nullptr;

    context.clipMask = &clip; // and from here on through it
    MMGradient dusk({{0, 0xFF1D4E89}, {0.6_fx, 0xFFE09F3E}, {1_fx, 0xFFB23A48}});
    dusk.setLinear(context, context.fillPaint, {0, 10_fx}, {0, 110_fx});
    context.drawPath(MMPathBuilder().rect(0, 0, 200_fx, 120_fx).words());
    context.clipMask = nullptr;
}
