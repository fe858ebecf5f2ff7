// SPDX-License-Identifier: MIT
// What the scenes of the picture test are drawn on: styles, and the shapes that show them.
#pragma once

#include "graphics2d/PaintSetup.h"
#include "graphics2d/convenience/MMPathBuilder.h"
#include "tests/support/Targets.h"
#include "tests/support/TextScene.h"
#include "tests/support/UserUnits.h"

#include <vector>

namespace KAVO::Graphics2D::pictures {

constexpr uint16_t kSide = 96;
constexpr Pixel kBlue = 0xFF457B9D, kRed = 0xFFE63946, kNight = 0xFF1D3557, kSand = 0xFFF4A261;

inline GradientStops stops(bool translucent)
{
    static const Pixel opaqueColours[] = {kRed, 0xFFF1FAEE, kBlue, kNight};
    static const Pixel translucentColours[] = {kRed, 0x80F1FAEE, 0x20457B9D, 0xC01D3557};
    static const Fixed offsets[] = {0, fx(0.3), 0.5_fx, 1_fx};
    return {translucent ? translucentColours : opaqueColours, offsets, 4};
}

inline Pixel texelAt(int32_t x, int32_t y)
{
    const Pixel rings[] = {0xFFA23E48, 0xFFFFD166, 0xFF118AB2};
    const Pixel colour = rings[((x - 6) * (x - 6) + (y - 5) * (y - 5)) / 6 % 3];
    return colour - (static_cast<Pixel>(x) * 18 << 24);
}

// An anti-aliased context over a square of slanted stripes, filling in blue, and a small image.
// Text comes from the fake engines.
struct Canvas : FreshEngine {
    Canvas() : pixels(kSide * kSide)
    {
        for (int32_t i = 0; i < 12 * 10; ++i)
            texels.push_back(texelAt(i % 12, i / 12));
        classicTarget(context, pixels.data(), kSide, kSide);
        context.target.backgroundColour = kSand;
        context.antiAlias = 1;
        solid(kBlue);
        initialState.assign(state(), stateEnd());
        reset();
    }

    // All as it was at first, but for the context's memory.
    void reset()
    {
        for (int32_t i = 0; i < kSide * kSide; ++i)
            pixels[static_cast<size_t>(i)] =
                (i % kSide + i / kSide) / 8 % 2 != 0 ? 0xFFFFFFFF : 0xFFCFE0D0;
        resetState();
    }

    // The same without the pixels.
    void resetState()
    {
        image = {12, 10, 48, 0, texels.data(), 1};
        void* const layoutControl = context.layoutControl;
        std::copy(initialState.begin(), initialState.end(), state());
        context.layoutControl = layoutControl;
    }

    void hard() { context.antiAlias = 0; }
    void opacity(uint8_t value) { context.fillPaint.paintOpacity = value; }
    void evenOdd() { context.fillRule = kFillEvenOdd; }

    void place(double a, double b, double c, double d, double e, double f)
    {
        context.transform = {fx(a), fx(b), fx(c), fx(d), fx(e), fx(f)};
    }

    void solid(Pixel colour, MMPaintType type = kPaintSolid)
    {
        context.fillPaint.paintType = type;
        context.fillPaint.paintColour = colour;
    }

    void linear(bool translucentStops = false)
    {
        setLinearGradient(context.fillPaint, at(14, 20), at(70, 60), context.transform,
                          stops(translucentStops), {rampColours, rampOffsets},
                          context.refined != 0);
    }

    void radial(bool translucentStops = false)
    {
        setRadialGradient(context.fillPaint, at(44, 40), 38_fx, context.transform,
                          stops(translucentStops), {rampColours, rampOffsets},
                          context.refined != 0);
    }

    void pattern(MMPatternFilter filter, bool hasAlpha = false)
    {
        image.pixmapExtra = hasAlpha ? 1 : 0;
        Matrix2D turned = {5.2_fx, 1.9_fx, -fx(2.1), 5.9_fx, 28.5_fx, 5_fx};
        setPattern(context.fillPaint, image, turned, filter, context.refined != 0);
        context.patternFilter = filter;
    }

    // Strokes with what would have filled.
    void stroke(double width, MMJoinStyle join = kJoinMiter, MMCapStyle cap = kCapButt)
    {
        context.strokePaint = context.fillPaint;
        context.fillPaint.paintType = kPaintNone;
        context.strokeHalfWidth = fx(width / 2);
        context.joinStyle = join;
        context.capStyle = cap;
    }

    void polygon(std::vector<MMPoint2D> corners)
    {
        context.currentPaint = context.fillPaint;
        context.rasterPolygon(corners.data(), static_cast<uint16_t>(corners.size()));
    }

    void path(const KAVO::Graphics2D::MMPathBuilder& built)
    {
        if (built.outOfMemory()) context.outOfMemory |= kScratchExhausted;
        context.drawPath(built.words());
    }

    void line(const std::vector<MMPoint2D>& points, bool closed = false)
    {
        KAVO::Graphics2D::MMPathBuilder lines;
        for (const MMPoint2D& p : points)
            &p == &points.front() ? lines.moveTo(p.x, p.y) : lines.lineTo(p.x, p.y);
        if (closed) lines.close();
        path(lines);
    }

    // With a drop, and a sliver at its side.
    void star()
    {
        using KAVO::operator""_fx;
        KAVO::Graphics2D::MMPathBuilder star;
        star.moveTo(40_fx, 4_fx).lineTo(58_fx, 74_fx).lineTo(5_fx, 30_fx).lineTo(76_fx, 30_fx);
        star.lineTo(20_fx, 75_fx).close();
        star.moveTo(66_fx, 60_fx).cubicTo(92_fx, 40_fx, 92_fx, 90_fx, 66_fx, 88_fx);
        star.cubicTo(50_fx, 90_fx, 52_fx, 62_fx, 66_fx, 60_fx).close();
        star.moveTo(82_fx, 4_fx).lineTo(84_fx, 3_fx).lineTo(94_fx, 50_fx).close();
        evenOdd();
        path(star);
    }

    void zigzag(bool closed = false)
    {
        line({at(12, 20), at(44, 14), at(20, 44), at(70, 24), at(52, 84), at(84, 80), at(84, 34),
              at(86, 12)},
             closed);
    }

    void blob()
    {
        using KAVO::operator""_fx;
        KAVO::Graphics2D::MMPathBuilder curves;
        curves.moveTo(10_fx, 50_fx).cubicTo(0, 0, 60_fx, -20_fx, 48_fx, 40_fx);
        curves.cubicTo(40_fx, 80_fx, 110_fx, 10_fx, 90_fx, 60_fx).lineTo(70_fx, 70_fx);
        curves.cubicTo(60_fx, 110_fx, 20_fx, 100_fx, 30_fx, 60_fx).close();
        path(curves);
    }

    // A polygon that crosses itself all over.
    void tangle(uint32_t corners, int32_t left, int32_t width)
    {
        std::vector<MMPoint2D> list;
        for (uint32_t i = 0, seed = 7; i < corners; ++i) {
            const int32_t x = static_cast<int32_t>((seed = seed * 1664525 + 1) >> 16);
            const int32_t y = static_cast<int32_t>((seed = seed * 1664525 + 1) >> 16);
            list.push_back({left * kFixedOne + x * width, 4 * kFixedOne + y * 88});
        }
        polygon(list);
    }

    void roundRectangles()
    {
        context.drawEllipticalRect(26_fx, 24_fx, 22_fx, 18_fx, 8_fx, 5_fx);
        context.drawEllipticalRect(72.5_fx, 24.5_fx, 18_fx, 20_fx, 18_fx, 20_fx);
        context.drawEllipticalRect(26_fx, 70_fx, 20_fx, 20_fx, 0, 0);
        context.transform.rotateCenter(30_fx, 72_fx, 70_fx);
        context.drawEllipticalRect(72_fx, 70_fx, 20_fx, 10_fx, 12_fx, 9_fx);
    }

    void arcs(uint8_t pie, uint8_t outline)
    {
        solid(kNight), stroke(2.5), solid(0xFFA8DADC);
        const int32_t sweeps[] = {30, 90, 200, 359, 720, -45, -180, -300, 1};
        for (int32_t i = 0; i < 9; ++i) {
            MMPoint2D centre = at(17 + 31 * (i % 3), 17 + 31 * (i / 3));
            context.drawCircularArc(&centre, 13_fx, fx(20 * i), sweeps[i] * kFixedOne, pie,
                                    outline);
        }
    }

    void text(const char16_t* units, int32_t x, int32_t y, double size)
    {
        context.fontSize = fx(size);
        context.drawText(Text(units).data(), x * kFixedOne, y * kFixedOne);
    }

    void texts()
    {
        text(u"ag i", 4, 22, 16);
        text(u"jgga gi", 10, 44, 11.5);
        context.transform.rotateCenter(20_fx, 48_fx, 48_fx);
        text(u"gia g", 4, 72, 14);
    }

    void mark(int32_t x, int32_t y) { pixels[static_cast<size_t>(y * kSide + x)] = kRed; }

    void drawImage(double x, double y, double w, double h, uint8_t offsetByPosition = 0)
    {
        context.drawImage(&image, fx(x), fx(y), fx(w), fx(h), offsetByPosition);
    }

    // The context's fields behind those that hold its memory.
    char* state() { return reinterpret_cast<char*>(&context.strokePaint); }
    char* stateEnd() { return reinterpret_cast<char*>(&context + 1); }

    std::vector<char> initialState;
    std::vector<Pixel> pixels;
    std::vector<Pixel> texels;
    MMPixmap image; // 12 by 10 texels, rings that fade to the right
    MMContext2D context;
    Pixel rampColours[gradientRampRoom(4)];
    Fixed rampOffsets[gradientRampRoom(4)];
};

} // namespace KAVO::Graphics2D::pictures
