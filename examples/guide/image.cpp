// SPDX-License-Identifier: MIT
#include "guide/Recipes.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

void drawImages(MMContext2D& context)
{
    Pixel texels[16 * 16]; // 0xAARRGGBB
    for (uint32_t i = 0; i < 16 * 16; ++i)
        texels[i] = (i / 4 + i / 64) % 2 ? 0xFF2A7F78 : 0xFFE09F3E;
    const MMPixmap image = {16, 16, 16 * 4, 0, texels, 0}; // the last 0: no alpha

    context.antiAlias = 1;
    { // upright, pixel for pixel, then magnified with hard texels
        const MMContextState state(context);
        context.patternFilter = kFilterNearest;
        context.transform.translate(12_fx, 20_fx);
        context.drawImage(&image, 0, 0, 16_fx, 16_fx, 0);
        context.transform = kIdentityMatrix;
        context.transform.scale(4_fx, 4_fx);
        context.transform.translate(40_fx, 20_fx);
        context.drawImage(&image, 0, 0, 16_fx, 16_fx, 0);
    }
    { // turned by 30 degrees, smooth
        const MMContextState state(context);
        context.patternFilter = kFilterBilinear;
        context.transform.scale(4_fx, 4_fx);
        context.transform.rotate(30_fx);
        context.transform.translate(140_fx, 20_fx);
        context.drawImage(&image, 0, 0, 16_fx, 16_fx, 0);
    }
}
