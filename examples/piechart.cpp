// SPDX-License-Identifier: MIT
// piechart OUTPUT.png [FONT]: a pie chart with its legend, a ring, an image and a paragraph.
#include "common/Picture.h" // PNG files

#include <cstdio>
#include <graphics2d/convenience/MMContextState.h>
#include <graphics2d/convenience/MMGradient.h>
#include <graphics2d/convenience/MMPathBuilder.h>
#include <graphics2d/convenience/MMText.h>

using namespace KAVO;
using namespace KAVO::Graphics2D;

// Fills what is drawn next with a colour, and strokes nothing.
static void fillWith(MMContext2D& context, Pixel colour)
{
    context.fillPaint.paintType = kPaintSolid;
    context.fillPaint.paintColour = colour;
    context.strokePaint.paintType = kPaintNone;
}

int main(int argc, char** argv)
{
    const struct {
        const char* name;
        int32_t percent;
        Pixel colour;
    } slices[] = {{"Paths and strokes", 42, 0xFF1D4E89},
                  {"Text", 27, 0xFFE09F3E},
                  {"Images", 19, 0xFF2A7F78},
                  {"Gradients", 12, 0xFFB23A48}};
    if (argc < 2 || !setFontFile(argc > 2 ? argv[2] : LATIN_FONT)) return 1;
    Picture picture(440, 260, 0xFFFFFFFF);
    MMContext2D context;
    setTarget(context, picture.pixels.data(), picture.width, picture.height);
    context.antiAlias = 1;

    MMGradient sheet({{0, 0xFFFFFFFF}, {1_fx, 0xFFDCE5F0}});
    sheet.setLinear(context, context.fillPaint, {0, 0}, {0, 260_fx});
    context.drawPath(MMPathBuilder().rect(0, 0, 440_fx, 260_fx).words());

    MMPoint2D centre = {130_fx, 130_fx};
    Degrees from = -90_fx; // the top
    Fixed y = 40_fx;
    context.fontSize = 14_fx;
    for (const auto& slice : slices) {
        const Degrees sweep = fixFromRatio(360 * slice.percent, 100);
        fillWith(context, slice.colour);
        context.drawCircularArc(&centre, 100_fx, from, sweep, 1, 0);
        context.drawPath(MMPathBuilder().rect(262_fx, y - 12_fx, 14_fx, 14_fx).words());
        fillWith(context, 0xFF222222);
        context.drawText(MMText(slice.name).units(), 286_fx, y);
        from += sweep;
        y += 24_fx;
    }

    context.fillPaint.paintType = kPaintNone; // a translucent ring over the slices
    context.strokePaint.paintType = kPaintSolid;
    context.strokePaint.paintColour = 0xFFFFFFFF;
    context.strokePaint.paintOpacity = 110;
    context.strokeHalfWidth = 9_fx;
    context.drawPath(MMPathBuilder().circle(centre.x, centre.y, 70_fx).words());

    Pixel texels[48 * 48]; // a chequered plate that fades to the right
    for (uint32_t i = 0; i < 48 * 48; ++i)
        texels[i] = (255 - i % 48 * 4) << 24 | ((i / 6 + i / 48 / 6) % 2 ? 0x1D4E89 : 0xE09F3E);
    const MMPixmap plate = {48, 48, 48 * 4, 0, texels, 1}; // 1: it has alpha
    {
        const MMContextState state(context);
        context.transform.translate(262_fx, 136_fx);
        context.drawImage(&plate, 0, 0, 48_fx, 48_fx, 0);
    }

    fillWith(context, 0xFF222222);
    context.fontSize = 12_fx;
    context.lineHeight = 17_fx;
    context.wrapWidth = 104_fx;
    context.wrapOffsetX = 322_fx;
    context.penX = 0;
    context.penY = 146_fx;
    MMText text("Lines are broken to fit beside the image, in any script that the font can draw.");
    context.drawWrappedText(text.units(), 0, 0);

    if (context.outOfMemory != 0 || !writePng(argv[1], picture).empty()) return 1;
    return 0;
}
