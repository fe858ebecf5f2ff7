// SPDX-License-Identifier: MIT
// Shapes put on the picture as one.
#include "guide/Recipes.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

void drawGroups(MMContext2D& context)
{
    context.antiAlias = 1;
    const auto disc = [&](Pixel colour, int32_t x, int32_t y) {
        context.fillPaint.paintColour = colour;
        context.drawPath(MMPathBuilder().circle(fixFromInt(x), fixFromInt(y), 28_fx).words());
    };
    context.fillPaint.paintColour = 0xFFDDDDDD;
    context.drawPath(MMPathBuilder().rect(0, 50_fx, 200_fx, 20_fx).words());
    {
        MMLayerOptions faint;
        faint.opacity = 128;
        const MMLayer layer(context, faint);
        disc(0xFF1D4E89, 36, 60); // half of the background shows, ...
        disc(0xFFE09F3E, 66, 60); // but not the first disc below this one
    }
    const Pixel inks[] = {0xFF00FFFF, 0xFFFF00FF, 0xFFFFFF00};
    for (int i = 0; i < 3; ++i) {
        MMLayerOptions ink;
        ink.blendMode = kBlendMultiply;
        const MMLayer layer(context, ink);
        disc(inks[i], 130 + 14 * i, i == 1 ? 74 : 48);
    }
}
