// SPDX-License-Identifier: MIT
#include "guide/Recipes.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

bool covers(MMContext2D& context, const MMPathBuilder& shape, int32_t column, int32_t row)
{
    const MMContextState state(context);
    context.fillPaint.paintType = kPaintPicking; // looks, and writes no pixel
    context.strokePaint.paintType = kPaintNone;
    context.pickX = fixFromInt(column);
    context.pickY = fixFromInt(row);
    context.pickHit = 0;
    context.drawPath(shape.words());
    return context.pickHit != 0;
}
