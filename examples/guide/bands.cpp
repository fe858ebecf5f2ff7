// SPDX-License-Identifier: MIT
#include "guide/Recipes.h"

#include <algorithm>

using namespace KAVO;
using namespace KAVO::Graphics2D;

bool drawInBands(int32_t height, void (*draw)(MMContext2D& context), Emit emit, void* user)
{
    static Pixel rows[kBandRows * kRecipeWidth];
    MMContext2D context;
    for (int32_t top = 0; top < height; top += kBandRows) {
        const int32_t count = std::min(kBandRows, height - top);
        std::fill_n(rows, kBandRows * kRecipeWidth, 0xFFFFFFFF);
        const MMContextState state(context);
        setTarget(context, rows, kRecipeWidth, count);
        context.transform.translate(0, fixFromInt(-top));
        draw(context);
        if (context.outOfMemory != 0) return false; // some of it was not drawn
        emit(user, rows, top, count);
    }
    return true; // context.scratchStack.peakWords tells what the largest band took
}
