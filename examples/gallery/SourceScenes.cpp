// SPDX-License-Identifier: MIT
// Gradients that are repeated and reflected, between two circles and around a point, and tiles.
#include "gallery/Canvas.h"
#include "graphics2d/sources/MMGradientSource.h"
#include "graphics2d/sources/MMTileSource.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

constexpr MMSpread kSpreads[] = {kSpreadPad, kSpreadRepeat, kSpreadReflect};
constexpr Pixel kColours[] = {0xFF1D4E89, 0xFFF4E285, 0xFFB23A48};
constexpr Fixed kOffsets[] = {0, 0.5_fx, 1_fx};
constexpr GradientStops kStops = {kColours, kOffsets, 3};

MMPoint2D at(double x, double y)
{
    return {fixed(x), fixed(y)};
}

MMSourceCircle circle(double x, double y, double radius)
{
    return {at(x, y), fixed(radius)};
}

} // namespace

// A row for each spread: along a line, from a focal point, in a cone, and a sector of a circle.
void drawSpreadScene(Canvas& canvas)
{
    MMContext2D& context = canvas.context();
    MMPaint& paint = context.fillPaint;
    for (int row = 0; row < 3; ++row) {
        const MMSpread spread = kSpreads[row];
        const double y = 8 + 64 * row;
        MMGradientSource source;
        setLinearSource(paint, source, at(38, y + 10), at(58, y + 20), context.transform, kStops,
                        spread);
        canvas.rectangle(8, y, 82, 56);
        setRadialSource(paint, source, circle(126, y + 20, 0), circle(132, y + 28, 18),
                        context.transform, kStops, spread);
        canvas.rectangle(102, y, 82, 56);
        setRadialSource(paint, source, circle(216, y + 28, 4), circle(240, y + 28, 12),
                        context.transform, kStops, spread);
        canvas.rectangle(196, y, 82, 56);
        setConicSource(paint, source, at(331, y + 28), degrees(-90), degrees(-20),
                       context.transform, kStops, spread);
        canvas.rectangle(290, y, 82, 56);
    }
}

// Repeated and mirrored under three transforms, and a hard-edged wheel.
void drawTileScene(Canvas& canvas)
{
    constexpr int kSide = 8;
    Pixel texels[kSide * kSide];
    for (int i = 0; i < kSide * kSide; ++i) {
        const int x = i % kSide, y = i / kSide;
        texels[i] = x + y < 7 ? 0xFF2A7F78 : x > y ? 0xFFE09F3E : 0xFFF4E285;
    }
    const MMPixmap image = {kSide, kSide, kSide * sizeof(Pixel), 0, texels, 0};
    MMContext2D& context = canvas.context();
    for (int column = 0; column < 3; ++column)
        for (int row = 0; row < 2; ++row) {
            const double x = 8 + 94 * column, y = 8 + 96 * row;
            canvas.place(x, y, column == 0 ? 2 : 2.6, 14 * column);
            const Matrix2D placed = context.transform;
            canvas.place();
            const MMTileMode mode = row == 0 ? kTileRepeat : kTileMirror;
            MMTileSource tiles;
            setTileSource(context.fillPaint, tiles, image, placed,
                          static_cast<MMPatternFilter>(column), mode, mode);
            canvas.rectangle(x, y, 84, 88);
        }
    Pixel colours[24];
    Fixed offsets[24];
    for (int i = 0; i < 24; ++i) {
        colours[i] = kColours[i / 2 % 3];
        offsets[i] = kFixedOne * ((i + 1) / 2) / 12;
    }
    MMGradientSource wheel;
    setConicSource(context.fillPaint, wheel, at(331, 100), 0, degrees(360), context.transform,
                   {colours, offsets, 24}, kSpreadPad);
    canvas.draw(star(331, 100, 42, 12, 5));
}
