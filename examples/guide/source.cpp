// SPDX-License-Identifier: MIT
// Paints without end: gradients that repeat, between circles and around a point, and tiles.
#include "guide/Recipes.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

void paintSources(MMContext2D& context)
{
    context.antiAlias = 1;
    const Pixel colours[] = {0xFF1D4E89, 0xFFA8D0F0, 0xFFFFFFFF};
    const Fixed offsets[] = {0, 0.7_fx, 1_fx};
    const GradientStops stops = {colours, offsets, 3};

    MMGradientSource stripes; // 20 pixels each, there and back
    setLinearSource(context.fillPaint, stripes, {0, 0}, {20_fx, 0}, context.transform, stops,
                    kSpreadReflect);
    context.drawPath(MMPathBuilder().rect(10_fx, 10_fx, 80_fx, 45_fx).words());

    MMGradientSource ball; // lit from a point inside of the circle
    setRadialSource(context.fillPaint, ball, {{140_fx, 22_fx}, 0}, {{150_fx, 32_fx}, 24_fx},
                    context.transform, {colours, offsets, 2}, kSpreadPad);
    context.drawPath(MMPathBuilder().circle(150_fx, 32_fx, 24_fx).words());

    MMGradientSource sweep; // once around, from the right over the bottom
    setConicSource(context.fillPaint, sweep, {50_fx, 88_fx}, 0, 360_fx, context.transform, stops,
                   kSpreadPad);
    context.drawPath(MMPathBuilder().circle(50_fx, 88_fx, 26_fx).words());

    Pixel texels[4 * 4]; // a dot on a ground
    for (int i = 0; i < 16; ++i)
        texels[i] = i == 5 ? 0xFFB23A48 : 0xFFE09F3E;
    MMTileSource dots;
    setTileSource(context.fillPaint, dots, {4, 4, 16, 0, texels, 0}, {2_fx, 0, 0, 2_fx, 0, 0},
                  kFilterNearest, kTileRepeat, kTileRepeat);
    context.drawPath(MMPathBuilder().rect(104_fx, 64_fx, 80_fx, 48_fx).words());
}
