// SPDX-License-Identifier: MIT
// Drawing and measuring whole texts.
#include "graphics2d/BoundsUnion.h"
#include "graphics2d/MMContext2D.h"
#include "graphics2d/text/TextRendering.h"
#include "util/WideString.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint16_t kWholeText = 65535;

// Whether the pen runs through the text, so that it can be anchored as a whole.
bool runsFromPen(const MMContext2D& context)
{
    return context.charXCount <= 1 && context.charYCount <= 1;
}

} // namespace

void MMContext2D::drawText(uint16_t** lines, uint8_t count, Fixed x, Fixed y)
{
    if (fontMetrics == nullptr || lines == nullptr) return;
    penX = x;
    penY = y;
    BoundsUnion().storeTo(*this);
    for (uint32_t i = 0; i < count; ++i)
        ParseText(lines[i], lines[i]);

    if (textAnchor != kAnchorStart && runsFromPen(*this)) {
        Fixed width = 0;
        for (uint32_t i = 0; i < count; ++i)
            width = wrapAdd(width, getTextWidth(lines[i], kWholeText));
        if (textAnchor == kAnchorMiddle) penX = wrapSub(penX, width >> 1);
        if (textAnchor == kAnchorEnd) penX = wrapSub(penX, width);
    }

    const uint8_t draw = drawSuppressed == 0 ? 1 : 0;
    uint32_t firstIndex = 0;
    for (uint32_t i = 0; i < count; ++i) {
        if (lines[i] == nullptr) continue;
        const uint32_t length = static_cast<uint32_t>(MMwsstrlen(lines[i]));
        renderText(lines[i], static_cast<uint16_t>(length), draw, firstIndex);
        firstIndex += length;
    }
}

void MMContext2D::drawText(uint16_t* text, Fixed x, Fixed y)
{
    drawText(&text, 1, x, y);
}

Fixed MMContext2D::getTextWidth(const uint16_t* text, uint16_t length)
{
    return widthOf(*this, {text, length, 0, true, refined != 0});
}

void MMContext2D::getTextSize(uint16_t* text, uint16_t length, Fixed& width, Fixed& height)
{
    if (fontMetrics == nullptr) return;
    if (text == nullptr) {
        width = height = 0;
        return;
    }
    ParseText(text, text);
    width = getTextWidth(text, length);
    height = lineHeight;
}

uint32_t MMContext2D::getTextBBox(uint16_t* text, Fixed x, Fixed y, MMFixedRegion* box)
{
    if (fontMetrics == nullptr || box == nullptr) return 0;
    ParseText(text, text);
    BoundsUnion bounds;
    const MMPoint2D pen = walkText(*this, kIdentityMatrix, {text, kWholeText, 0, true, false},
                                   {x, y}, {nullptr, &bounds});
    penX = pen.x;
    penY = pen.y;

    const Fixed width = wrapSub(box->x1, box->x0);
    if (textAnchor != kAnchorStart && runsFromPen(*this) && width > 0) {
        const Fixed shift = textAnchor == kAnchorMiddle ? width / 2
                            : textAnchor == kAnchorEnd  ? width
                                                        : 0;
        bounds.minX = wrapSub(bounds.minX, shift);
        bounds.maxX = wrapSub(bounds.maxX, shift);
    }
    bounds.storeTo(*this);
    *box = {bounds.minX, bounds.minY, bounds.maxX, bounds.maxY};
    return 0;
}

void MMContext2D::newLine()
{
    penY = wrapAdd(penY, lineHeight);
    newLineFlag = 1;
    penX = 0;
}

} // namespace Graphics2D
} // namespace KAVO
