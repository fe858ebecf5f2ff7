// SPDX-License-Identifier: MIT
// Joins, caps, dashes, hairlines, crossings and positions along a path.
#include "gallery/Canvas.h"

#include <cmath>

using namespace KAVO;

using namespace KAVO::Graphics2D;

namespace {

constexpr Pixel kInk = 0xFF264653;
constexpr Pixel kRed = 0xFFC8443C;
constexpr Pixel kGreen = 0xFF2A9D8F;

MMPathBuilder zigzag()
{
    MMPathBuilder path;
    path.moveTo(0, 26_fx).lineTo(12_fx, 0).lineTo(24_fx, 26_fx).lineTo(32_fx, 8_fx);
    return path;
}

MMPathBuilder wave()
{
    MMPathBuilder path;
    path.moveTo(0, 0)
        .cubicTo(20_fx, -24_fx, 40_fx, -24_fx, 60_fx, 0)
        .cubicTo(80_fx, 24_fx, 100_fx, 24_fx, 120_fx, 0)
        .cubicTo(140_fx, -24_fx, 160_fx, -24_fx, 180_fx, 0);
    return path;
}

} // namespace

// Joins from top to bottom; caps by three widths from left to right.
void drawJoinScene(Canvas& canvas)
{
    MMContext2D& context = canvas.context();
    const double widths[] = {1.5, 5, 10};
    for (uint8_t join = 0; join < 3; ++join) {
        for (uint8_t cap = 0; cap < 3; ++cap) {
            for (int width = 0; width < 3; ++width) {
                canvas.place(10 + 124 * cap + 40 * width, 18 + 64 * join);
                context.joinStyle = join;
                context.capStyle = cap;
                canvas.stroke(kInk, widths[width]);
                canvas.draw(zigzag());
            }
        }
    }
    context.joinStyle = kJoinMiter;
    context.capStyle = kCapButt;
}

// The same pattern at five offsets, then round dots, an odd pattern and dashes round a corner.
void drawDashScene(Canvas& canvas)
{
    MMContext2D& context = canvas.context();
    static const Fixed pattern[] = {fixed(14), fixed(6), fixed(3), fixed(6)};
    context.dashArray = pattern;
    context.dashCount = 4;
    canvas.stroke(kRed, 4);
    for (int i = 0; i < 5; ++i) {
        canvas.place(10, 14 + 18 * i);
        context.dashOffset = fixed(7 * i);
        canvas.draw(MMPathBuilder().moveTo(0, 0).lineTo(360_fx, 0));
    }
    context.dashOffset = 0;
    static const Fixed dots[] = {0, fixed(9)};
    context.dashArray = dots;
    context.dashCount = 2;
    context.capStyle = kCapRound;
    canvas.stroke(kInk, 5);
    canvas.place(12, 138);
    canvas.draw(wave());
    static const Fixed odd[] = {fixed(12), fixed(4), fixed(2)};
    context.dashArray = odd;
    context.dashCount = 3;
    context.capStyle = kCapButt;
    canvas.stroke(kGreen, 6);
    canvas.place(12, 172);
    canvas.draw(wave());
    context.dashArray = pattern;
    context.dashCount = 4;
    canvas.place();
    canvas.draw(star(290, 150, 44, 5, 2));
    context.dashArray = nullptr;
}

// Lines of one pixel and of half a pixel, each an eighth of a pixel further than the one before;
// below, lines in all directions, smooth and not.
void drawHairlineScene(Canvas& canvas)
{
    const auto line = [&](double x0, double y0, double x1, double y1) {
        canvas.draw(MMPathBuilder().moveTo(fixed(x0), fixed(y0)).lineTo(fixed(x1), fixed(y1)));
    };
    for (int i = 0; i < 8; ++i) {
        const double offset = i / 8.0, y = 8 + 7 * i + offset;
        for (const bool half : {false, true}) {
            const double x = 10 + 22 * i + offset + (half ? 10 : 0), left = half ? 290 : 200;
            canvas.stroke(0xFF000000, half ? 0.5 : 1);
            line(x, 8, x, 60);
            line(left, y, left + 80, y);
        }
    }
    for (const bool smooth : {true, false}) {
        canvas.context().antiAlias = smooth;
        canvas.stroke(kInk, smooth ? 1 : 0.5);
        for (int i = 0; i < 36; ++i) {
            canvas.place(smooth ? 95 : 285, 132, 1, 10 * i + 2.5);
            canvas.draw(MMPathBuilder().moveTo(6_fx, 0).lineTo(62_fx, 0));
        }
    }
    canvas.context().antiAlias = 1;
}

// Where a line crosses itself it is no darker.
void drawCrossingScene(Canvas& canvas)
{
    MMContext2D& context = canvas.context();
    context.joinStyle = kJoinRound;
    context.capStyle = kCapRound;
    canvas.stroke(0xFF5F0F80, 16, 110);
    canvas.draw(MMPathBuilder()
                    .moveTo(20_fx, 60_fx)
                    .cubicTo(200_fx, 20_fx, 20_fx, 220_fx, 150_fx, 170_fx)
                    .cubicTo(180_fx, 140_fx, 80_fx, 20_fx, 30_fx, 160_fx));
    canvas.draw(star(250, 100, 66, 5, 2));
    canvas.stroke(kRed, 26, 140);
    canvas.draw(MMPathBuilder()
                    .moveTo(334_fx, 30_fx)
                    .cubicTo(370_fx, 50_fx, 370_fx, 150_fx, 334_fx, 170_fx)
                    .lineTo(352_fx, 60_fx));
    context.joinStyle = kJoinMiter;
    context.capStyle = kCapButt;
}

// Dots at equal distances along a path, each with a tick in the direction of the path.
void drawPositionScene(Canvas& canvas)
{
    MMPathBuilder path;
    path.moveTo(20_fx, 160_fx)
        .cubicTo(60_fx, -20_fx, 140_fx, -10_fx, 130_fx, 90_fx)
        .cubicTo(120_fx, 200_fx, 220_fx, 220_fx, 230_fx, 110_fx)
        .lineTo(300_fx, 40_fx)
        .lineTo(360_fx, 150_fx);
    canvas.stroke(0xFF9AA5B1, 2);
    canvas.draw(path);
    MMPathPos position = {};
    position.path = path.storedPath();
    for (int step = 0; step <= 33; ++step) {
        Degrees direction = 0;
        canvas.context().getPathPos(position, fixed(21 * step), &direction);
        const double x = position.current.x / 65536.0;
        const double y = position.current.y / 65536.0;
        canvas.place(x, y, 1, direction / 65536.0);
        canvas.stroke(kGreen, 1.5);
        canvas.draw(MMPathBuilder().moveTo(0, 0).lineTo(0, -12_fx));
        canvas.fill(kRed);
        canvas.draw(MMPathBuilder().circle(0, 0, 3.5_fx));
    }
}
