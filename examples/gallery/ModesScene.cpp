// SPDX-License-Identifier: MIT
// The same drawing by the classic rules and by the refined ones.
#include "gallery/Canvas.h"
#include "graphics2d/PaintSetup.h"
#include "graphics2d/convenience/MMGradient.h"

#include <cmath>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

constexpr Pixel kInk = 0xFF222222;

// A disc whose invisible corners are black.
Picture makeIcon(int side)
{
    Picture icon(side, side, 0);
    const double middle = (side - 1) / 2.0;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            if (std::hypot(x - middle, y - middle) < middle) icon.at(x, y) = 0xFFE8C547;
    return icon;
}

void drawLine(MMContext2D& context, const char* utf8, Fixed x, Fixed y)
{
    context.drawText(MMText(utf8).units(), x, y);
}

// Slanted letters, a translucent card over lines, an enlarged icon, a fading gradient, a paragraph.
void drawSample(Canvas& canvas)
{
    MMContext2D& context = canvas.context();
    context.fontSize = 11_fx;
    canvas.fill(kInk);
    drawLine(context, context.refined ? "refined" : "classic", 8_fx, 16_fx);
    context.fontSize = 10_fx;
    context.fontStyle = kFontItalic;
    drawLine(context, "illimitable, slanted", 70_fx, 16_fx);
    context.fontStyle = kFontUpright;

    for (int i = 0; i < 8; ++i) {
        canvas.fill(kInk);
        canvas.rectangle(12 + 10 * i, 30, 1, 50);
    }
    canvas.fill(0xFF3D7EA6, 140);
    canvas.rectangle(8, 40, 84, 30);

    canvas.fill(kInk);
    Picture icon = makeIcon(9);
    const MMPixmap pixmap = {9, 9, 36, 0, icon.pixels.data(), 1};
    MMPathBuilder square;
    square.rect(106_fx, 30_fx, 72_fx, 54_fx);
    Matrix2D place = {6_fx, 0, 0, 6_fx, 115_fx, 30_fx};
    place *= context.transform;
    setPattern(context.fillPaint, pixmap, place, kFilterBilinear, context.refined != 0);
    context.patternFilter = kFilterBilinear;
    canvas.draw(square);

    MMGradient fade({{0, 0xFFB23A48}, {1_fx, 0x00B23A48}});
    fade.setLinear(context, context.fillPaint, {8_fx, 0}, {178_fx, 0});
    MMPathBuilder bar;
    canvas.draw(bar.rect(8_fx, 92_fx, 170_fx, 14_fx));

    canvas.fill(kInk);
    context.fontSize = 12_fx;
    context.lineHeight = 16_fx;
    context.wrapWidth = 168_fx;
    context.wrapOffsetX = 8_fx;
    context.penX = 0;
    context.penY = 126_fx;
    context.textDecoration = 0;
    MMText text("Baselines of wrapped text, one line below the other, at whole distances.");
    context.drawWrappedText(text.units(), 0, 0);
    for (int i = 0; i < 5; ++i) { // small discs
        canvas.fill(0xFF2A7F78);
        MMPathBuilder disc;
        canvas.draw(disc.circle(fixed(14 + 26 * i), 182_fx, fixed(1.5 + 2 * i)));
    }
}

} // namespace

void drawModesScene(Canvas& canvas)
{
    canvas.useFont(LATIN_FONT);
    for (const uint8_t refined : {uint8_t{0}, uint8_t{1}}) {
        canvas.context().refined = refined;
        canvas.place(refined ? 190 : 0, 0);
        drawSample(canvas);
    }
}
