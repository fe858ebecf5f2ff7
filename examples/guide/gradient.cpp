// SPDX-License-Identifier: MIT
#include "guide/Recipes.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

void paintGradients(MMContext2D& context)
{
    context.antiAlias = 1;
    MMGradient sky({{0, 0xFF1D4E89}, {0.7_fx, 0xFFA8D0F0}, {1_fx, 0xFFFFFFFF}});
    sky.setLinear(context, context.fillPaint, {0, 0}, {0, 120_fx}); // downward
    context.drawPath(MMPathBuilder().rect(0, 0, 200_fx, 120_fx).words());

    MMGradient sun({{0, 0xFFFFF3B0}, {0.5_fx, 0xFFE09F3E}, {1_fx, 0x00E09F3E}}); // fades
    sun.setRadial(context, context.fillPaint, {140_fx, 50_fx}, 40_fx);
    context.drawPath(MMPathBuilder().circle(140_fx, 50_fx, 40_fx).words());
}
