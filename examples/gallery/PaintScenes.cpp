// Every paint, opaque and translucent, and an image under the three filters.
#include "gallery/Canvas.h"
#include "graphics2d/PaintSetup.h"

#include <cmath>

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

struct Ramp {
    Pixel colours[gradientRampRoom(4)];
    Fixed offsets[gradientRampRoom(4)];
};

const Pixel kColours[] = {0xFF540B0E, 0xFFE09F3E, 0xFFFFF3B0, 0xFF335C67};
const Pixel kFadingColours[] = {0xFF540B0E, 0xC0E09F3E, 0x60FFF3B0, 0x00335C67};
const Fixed kOffsets[] = {0, 0x5555, 0xAAAA, 0x10000};

} // namespace

// From left to right: solid, exclusive-or, linear, linear with alpha, radial, radial with alpha,
// image nearest, bilinear, bicubic; opaque above, at 55 % below, over stripes.
void drawPaintScene(Canvas& canvas)
{
    canvas.fill(0xFFB8C4CE);
    for (int i = 0; i < 12; ++i)
        canvas.rectangle(4, 6 + 16 * i, 372, 8);

    MMContext2D& context = canvas.context;
    Picture image = makeImage(16, true);
    const MMPixmap pixmap = pixmapOf(image);
    const GradientStops stops = {kColours, kOffsets, 4};
    const GradientStops fading = {kFadingColours, kOffsets, 4};
    Ramp ramp;
    const GradientRamp room = {ramp.colours, ramp.offsets};
    constexpr double kRadius = 19;
    for (int row = 0; row < 2; ++row) {
        for (int column = 0; column < 9; ++column) {
            canvas.place(26 + 41 * column, 52 + 96 * row);
            canvas.fill(0xFF2A7F78);
            MMPaint& paint = context.fillPaint;
            const MMPoint2D left = {fixed(-kRadius), 0};
            const MMPoint2D right = {fixed(kRadius), 0};
            const GradientStops& used = column % 2 ? fading : stops;
            if (column == 1)
                paint.paintType = kPaintXOR;
            else if (column == 2 || column == 3)
                setLinearGradient(paint, left, right, context.transform, used, room);
            else if (column == 4 || column == 5)
                setRadialGradient(paint, {0, 0}, fixed(kRadius), context.transform, used, room);
            if (column >= 6) {
                const auto filter = static_cast<MMPatternFilter>(column - 6);
                context.patternFilter = filter;
                canvas.placeUnshifted(26 + 41 * column - kRadius, 52 + 96 * row - kRadius,
                                      kRadius / 8, 0);
                const Matrix2D texels = context.transform;
                canvas.place(26 + 41 * column, 52 + 96 * row);
                setPattern(paint, pixmap, texels, filter);
            }
            paint.paintOpacity = row ? 140 : 255;
            // A ring and a dot in its middle: curved edges inside and out.
            context.fillRule = kFillEvenOdd;
            PathBuilder shape;
            shape.circle(0, -16, kRadius).circle(0, -16, 5).star(0, 24, kRadius, 12, 5);
            canvas.draw(shape);
            context.fillRule = kFillNonZero;
        }
    }
}

// The same image turned and magnified: nearest, bilinear, bicubic; below at 1:1 and as drawImage
// scales it into upright rectangles.
void drawImageScene(Canvas& canvas)
{
    MMContext2D& context = canvas.context;
    Picture image = makeImage(16, false);
    MMPixmap pixmap = pixmapOf(image);
    for (uint8_t filter = 0; filter < 3; ++filter) {
        const double x = 68 + 122 * filter;
        canvas.fill(0);
        canvas.placeUnshifted(x, 2, 5.6, 30);
        setPattern(context.fillPaint, pixmap, context.transform,
                   static_cast<MMPatternFilter>(filter));
        context.patternFilter = filter;
        canvas.place(x, 2, 5.6, 30);
        canvas.rectangle(0, 0, 16, 16);
    }
    context.antiAlias = 0;
    for (uint8_t filter = 0; filter < 3; ++filter) {
        context.patternFilter = filter;
        canvas.placeUnshifted(20 + 122 * filter, 144);
        context.drawImage(&pixmap, 0, 0, fixed(16), fixed(16), 0);
        canvas.placeUnshifted(44 + 122 * filter, 144, 3);
        context.drawImage(&pixmap, 0, 0, fixed(16), fixed(16), 0);
    }
    context.antiAlias = 1;
    context.patternFilter = kFilterBilinear;
}
