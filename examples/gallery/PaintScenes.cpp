// SPDX-License-Identifier: MIT
// Every paint, opaque and translucent, and an image under the three filters.
#include "gallery/Canvas.h"
#include "graphics2d/convenience/MMGradient.h"

#include <cmath>

using namespace KAVO;

using namespace KAVO::Graphics2D;

namespace {

// A small image: a disc in rings on a chequered ground, transparent in the corners when asked.
Picture makeImage(int side, bool transparentCorners)
{
    Picture image(side, side, 0);
    image.hasAlpha = transparentCorners;
    const double middle = (side - 1) / 2.0;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const double r = std::hypot(x - middle, y - middle) / middle;
            const bool dark = (x / 2 + y / 2) % 2 != 0;
            Pixel pixel = dark ? 0xFF335C67 : 0xFFFFF3B0;
            if (r < 0.75)
                pixel = static_cast<int>(r * 8) % 2 ? 0xFFE09F3E : 0xFF9E2A2B;
            else if (transparentCorners)
                pixel &= r > 1 ? 0x00FFFFFFu : 0x80FFFFFFu;
            image.at(x, y) = pixel;
        }
    }
    return image;
}

MMPixmap pixmapOf(Picture& image)
{
    const auto width = static_cast<uint16_t>(image.width);
    const auto height = static_cast<uint16_t>(image.height);
    return {width, height, width * 4u, 0, image.pixels.data(), image.hasAlpha};
}

} // namespace

// Pairs of an opaque paint and the same at 55 %, over stripes: solid, exclusive-or, linear; linear
// with alpha, radial, radial with alpha; image nearest, bilinear, bicubic.
void drawPaintScene(Canvas& canvas)
{
    canvas.fill(0xFFB8C4CE);
    for (int i = 0; i < 12; ++i)
        canvas.rectangle(4, 6 + 16 * i, 372, 8);

    MMContext2D& context = canvas.context();
    Picture image = makeImage(16, true);
    const MMPixmap pixmap = pixmapOf(image);
    MMGradient solid({{0, 0xFF540B0E},
                      {fixFromRatio(1, 3), 0xFFE09F3E},
                      {fixFromRatio(2, 3), 0xFFFFF3B0},
                      {1_fx, 0xFF335C67}});
    MMGradient fading({{0, 0xFF540B0E},
                       {fixFromRatio(1, 3), 0xC0E09F3E},
                       {fixFromRatio(2, 3), 0x60FFF3B0},
                       {1_fx, 0x00335C67}});
    constexpr double kRadius = 28;
    const MMPoint2D left = {fixed(-kRadius), 0};
    const MMPoint2D right = {fixed(kRadius), 0};
    for (int i = 0; i < 18; ++i) {
        const int column = i % 6, row = i / 6;
        const double x = 33 + 63 * column;
        const double y = 36 + 64 * row;
        const int kind = i / 2;
        MMPaint& paint = context.fillPaint;
        canvas.fill(0xFF2A7F78);
        canvas.place(x, y);
        paint.paintOpacity = i % 2 ? 140 : 255;
        if (kind == 1)
            paint.paintType = kPaintXOR;
        else if (kind == 2 || kind == 3)
            (kind == 3 ? fading : solid).setLinear(context, paint, left, right);
        else if (kind == 4 || kind == 5)
            (kind == 5 ? fading : solid).setRadial(context, paint, {0, 0}, fixed(kRadius));
        if (kind >= 6) {
            const auto filter = static_cast<MMPatternFilter>(kind - 6);
            context.patternFilter = filter;
            canvas.place(x - kRadius, y - kRadius, kRadius / 8, 0);
            setPattern(paint, pixmap, context.transform, filter, true);
            canvas.place(x, y);
        }
        // A disc with a star cut out: curved and straight edges, outside and in.
        context.fillRule = kFillEvenOdd;
        MMPathBuilder path;
        path.circle(0, 0, fixed(kRadius));
        addStar(path, 0, 0, 15, 8, 1);
        path.circle(0, 0, 5_fx);
        canvas.draw(path);
        context.fillRule = kFillNonZero;
    }
}

// The same image turned and magnified: nearest, bilinear, bicubic; below upright, at 1:1 and
// enlarged.
void drawImageScene(Canvas& canvas)
{
    MMContext2D& context = canvas.context();
    Picture image = makeImage(16, false);
    MMPixmap pixmap = pixmapOf(image);
    const auto drawAt = [&](double x, double y, double scale, double angle) {
        canvas.place(x, y, scale, angle);
        context.drawImage(&pixmap, 0, 0, 16_fx, 16_fx, 0);
    };
    for (uint8_t filter = kFilterNearest; filter <= kFilterBicubic; ++filter) {
        context.patternFilter = filter;
        drawAt(54 + 122 * filter, 6, 5, 30);
        drawAt(20 + 122 * filter, 144, 1, 0);
        drawAt(44 + 122 * filter, 144, 3, 0);
    }
    context.patternFilter = kFilterBilinear;
}
