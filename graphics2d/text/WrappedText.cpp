// SPDX-License-Identifier: MIT
// Drawing a paragraph line by line, with its underline.
#include "graphics2d/BoundsUnion.h"
#include "graphics2d/MMContext2D.h"
#include "graphics2d/OutOfMemory.h"
#include "graphics2d/text/ParagraphLayout.h"
#include "graphics2d/text/TextRendering.h"
#include "memory/ScratchArray.h"
#include "util/WideString.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kDecorationUnderline = 1;

uint32_t longestLine(const ParagraphLayout& paragraph)
{
    uint32_t longest = 0;
    for (uint32_t i = 0; i < paragraph.lineCount(); ++i)
        longest = std::max(longest, paragraph.lengthOf(i));
    return longest;
}

// Strokes a line below a line of text that starts at (x, y), in the text's colour, and adds its
// bounds to the text's. The stroke settings stay behind, also those of a line without characters.
void drawUnderline(MMContext2D& context, Fixed x, Fixed y, const TextRun& line)
{
    context.currentPaint =
        context.fillPaint.paintType != kPaintNone ? context.fillPaint : context.strokePaint;
    context.strokePaint.paintColour = context.currentPaint.paintColour;
    context.strokePaint.paintType = kPaintSolid;
    context.strokeHalfWidth = context.lineHeight >> 4;
    if (context.strokeHalfWidth == 0) context.strokeHalfWidth = context.fontSize / 24;
    if (line.text[0] == 0) return;

    BoundsUnion bounds;
    bounds.addBoundsOf(context);
    const Fixed below = wrapAdd(y, context.lineHeight >> 3);
    MMPoint2D ends[2] = {{x, below}, {wrapAdd(x, widthOf(context, line)), below}};
    MMLinkPath path = {ends, 2};
    if (context.dashArray != nullptr)
        context.drawDashArray(&path, 1, 0);
    else
        context.drawPolyline(&path, 1, 0);
    if (context.accumulateBounds == 0) return;
    bounds.addBoundsOf(context);
    bounds.storeTo(context);
}

} // namespace

void MMContext2D::drawWrappedText(uint16_t* text, uint8_t, uint8_t)
{
    if (fontMetrics == nullptr || text == nullptr) return;
    ParagraphLayout paragraph;
    if (!paragraph.compose(*this, text, fixFloor(wrapWidth))) return;
    ScratchArray<uint16_t> units(scratchStack, longestLine(paragraph) + 1);
    if (!units) {
        noteOutOfMemory(*this);
        return;
    }
    BoundsUnion().storeTo(*this);

    uint16_t* line = units.data();
    const uint8_t draw = drawSuppressed == 0 ? 1 : 0;
    for (uint32_t i = 0; i < paragraph.lineCount(); ++i) {
        paragraph.copyLine(i, line);
        penX = wrapAdd(penX, wrapOffsetX);
        penY = wrapAdd(penY, wrapOffsetY);
        const MMPoint2D start = {penX, penY};
        ParseText(line, line);
        const uint16_t length = static_cast<uint16_t>(MMwsstrlen(line));
        renderText(line, length, draw, 0);
        if (textDecoration == kDecorationUnderline)
            drawUnderline(*this, start.x, start.y, {line, length, 0, true, false});
        if (refined != 0) penY = start.y; // wherever turned characters led it
        penX = wrapSub(penX, wrapOffsetX);
        penY = wrapSub(penY, wrapOffsetY);
        newLine();
        newLineFlag = 0;
    }
}

} // namespace Graphics2D
} // namespace KAVO
