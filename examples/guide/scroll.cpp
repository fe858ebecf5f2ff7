// SPDX-License-Identifier: MIT
#include "guide/Recipes.h"

#include <algorithm>

using namespace KAVO;
using namespace KAVO::Graphics2D;

// Draws what lies inside the clip.
void drawList(MMContext2D& context, const List& list)
{
    constexpr int32_t kLine = 20; // pixels
    context.fontSize = 14_fx;
    context.fillPaint.paintType = kPaintSolid;
    context.fillPaint.paintColour = 0xFF222222;
    const int32_t first = std::max((list.firstRow + context.clipTop) / kLine, 0);
    const int32_t end = (list.firstRow + context.clipBottom + kLine - 1) / kLine;
    for (int32_t i = first; i < std::min(end, list.count); ++i) {
        const Fixed baseline = fixFromInt(i * kLine + 15 - list.firstRow);
        context.drawText(MMText(list.lines[i]).units(), 10_fx, baseline);
    }
}

// Moves the pixels that stay, and draws the rows that come into sight.
void scrollList(MMContext2D& context, List& list, int32_t rows)
{
    list.firstRow += rows;
    panPixmap(&context.target, 0, static_cast<int16_t>(-rows)); // leaves backgroundColour there
    const MMContextState state(context);
    if (rows > 0)
        context.clipTop = static_cast<int16_t>(std::max(context.clipBottom - rows, 0));
    else
        context.clipBottom = static_cast<int16_t>(std::min<int32_t>(-rows, context.clipBottom));
    drawList(context, list);
}
