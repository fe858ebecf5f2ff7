// SPDX-License-Identifier: MIT
// Fills, rounded rectangles, arcs.
#include "gallery/Canvas.h"

using namespace KAVO;

using namespace KAVO::Graphics2D;

namespace {

constexpr Pixel kBlue = 0xFF1D4E89;
constexpr Pixel kRed = 0xFFB23A48;
constexpr Pixel kOrange = 0xFFE09F3E;
constexpr Pixel kTeal = 0xFF2A7F78;

} // namespace

// Stars by both fill rules, with and without anti-aliasing, then overlapping translucent circles.
void drawFillScene(Canvas& canvas)
{
    for (const bool smooth : {true, false}) {
        canvas.context().antiAlias = smooth;
        canvas.place(smooth ? 0 : 130);
        canvas.fill(kBlue);
        canvas.context().fillRule = kFillNonZero;
        canvas.draw(star(65, 52, 46, 7, 3));
        canvas.fill(kRed);
        canvas.context().fillRule = kFillEvenOdd;
        canvas.draw(star(65, 150, 46, 7, 3));
    }
    canvas.context().antiAlias = 1;
    canvas.context().fillRule = kFillNonZero;

    canvas.place(260);
    const Pixel colours[] = {kRed, kOrange, kTeal};
    const double centres[][2] = {{60, 40}, {40, 74}, {80, 74}};
    for (int i = 0; i < 3; ++i) {
        canvas.fill(colours[i], 160);
        canvas.draw(MMPathBuilder().circle(fixed(centres[i][0]), fixed(centres[i][1]), 36_fx));
    }
    // Slivers: a fan of triangles that narrow to a point.
    canvas.fill(0xFF333333);
    for (int i = 0; i < 12; ++i) {
        canvas.place(260 + 60, 190, 1, -82.5 + 15 * i);
        canvas.draw(
            MMPathBuilder().moveTo(0, 0).lineTo(-2_fx, -56_fx).lineTo(2_fx, -56_fx).close());
    }
}

void drawRoundedScene(Canvas& canvas)
{
    MMContext2D& context = canvas.context();
    canvas.fill(kTeal);
    for (int i = 0; i < 4; ++i)
        context.drawEllipticalRect(fixed(50 + 92 * i), fixed(40), fixed(40), fixed(28),
                                   fixed(i * 40 / 3.0), fixed(i * 28 / 3.0));
    canvas.stroke(kBlue, 4);
    for (int i = 0; i < 4; ++i)
        context.drawEllipticalRect(fixed(50 + 92 * i), fixed(104), fixed(40), fixed(24),
                                   fixed(8 + 8 * i), fixed(24 - 6 * i));
    static const Fixed dashes[] = {fixed(9), fixed(5)};
    context.dashArray = dashes;
    context.dashCount = 2;
    canvas.stroke(kRed, 3);
    context.drawEllipticalRect(fixed(70), fixed(164), fixed(60), fixed(24), fixed(24), fixed(24));
    context.dashArray = nullptr;
    canvas.stroke(kOrange, 6);
    for (int i = 0; i < 5; ++i) {
        canvas.place(200, 164, 1, 36 * i);
        context.drawEllipticalRect(0, 0, fixed(30), fixed(10), fixed(30), fixed(10));
    }
    canvas.place();
    canvas.fill(kRed);
    for (int i = 0; i < 8; ++i)
        context.drawEllipticalRect(fixed(270 + 14 * i), fixed(164), fixed(1 + 0.6 * i),
                                   fixed(3 + 3 * i), fixed(1 + 0.6 * i), fixed(3 + 3 * i));
}

// Pies and chords, filled and outlined, then arcs of growing sweep.
void drawArcScene(Canvas& canvas)
{
    MMContext2D& context = canvas.context();
    for (int i = 0; i < 4; ++i) {
        const auto pie = static_cast<uint8_t>(i % 2);
        const auto outline = static_cast<uint8_t>(i / 2);
        MMPoint2D centre = {fixed(50 + 92 * i), fixed(52)};
        canvas.fill(kOrange);
        context.strokePaint.paintType = kPaintSolid;
        context.strokePaint.paintColour = kBlue;
        context.strokePaint.paintOpacity = 255;
        context.strokeHalfWidth = fixed(1.5);
        context.drawCircularArc(&centre, fixed(40), degrees(200), degrees(230), pie, outline);
    }
    canvas.fill(kTeal);
    for (int i = 0; i < 9; ++i) {
        MMPoint2D centre = {fixed(25 + 41 * i), fixed(126)};
        context.drawCircularArc(&centre, fixed(17), degrees(-90), degrees(45 * (i + 1) - 5), 1, 0);
    }
    canvas.stroke(kRed, 5);
    context.capStyle = kCapRound;
    for (int i = 0; i < 9; ++i) {
        MMPoint2D centre = {fixed(25 + 41 * i), fixed(174)};
        context.drawCircularArc(&centre, fixed(15), degrees(90), degrees(-45 * (i + 1) + 5), 0, 1);
    }
    context.capStyle = kCapButt;
}
