// SPDX-License-Identifier: MIT
// Small pictures with everything that the library can draw.
#pragma once

#include "math/FixedMath.h"
#include "tests/pictures/Canvas.h"
#ifndef MM2D_WITHOUT_LAYERS
#include "tests/pictures/LayerScenes.h"
#include "tests/pictures/SourceScenes.h"
#endif

namespace KAVO::Graphics2D::pictures {

template <MMPatternFilter filter>
void turnedImage(Canvas& c)
{
    c.context.patternFilter = filter;
    c.place(5.4, 2.5, -2.1, 4.5, 25.5, 5.25), c.drawImage(0, 0, 12, 10);
    c.context.imageOpacity = 110;
    c.place(2, 0, 0, 2, 66, 70), c.drawImage(0, 0, 12, 10);
}

// At 1:1, cut out by the rectangle, shrunk, and mirrored.
inline void placedImages(Canvas& c)
{
    c.drawImage(8, 8, 12, 10, 1), c.drawImage(0, 40, 48, 30);
    c.place(0.55, 0, 0, 0.7, 60, 20), c.drawImage(0, 0, 12, 10);
    c.place(-3, 0, 0, 3, 92, 50), c.drawImage(0, 0, 12, 10);
}

template <MMPatternFilter filter>
void imageParts(Canvas& c)
{
    const auto draw = [&c](const MMFixedRegion& from, const MMFixedRegion& to, Degrees turn) {
        const MMPixmap destination = c.context.target;
        c.context.drawImage(&c.image, &from, &destination, &to, turn);
    };
    c.context.patternFilter = filter;
    draw({0, 0, 12_fx, 10_fx}, {4_fx, 4_fx, 60_fx, 40_fx}, 0);
    c.context.imageOpacity = 150;
    c.context.currentPaint.patternHasAlpha = 1;
    draw({3_fx, 2_fx, 9.5_fx, 8_fx}, {50_fx, 88.5_fx, 90_fx, 60_fx}, 30_fx);
}

inline void clipped(Canvas& c)
{
    c.context.clipLeft = 21, c.context.clipTop = 17;
    c.context.clipRight = 77, c.context.clipBottom = 63;
    c.linear(), c.blob(), c.solid(kRed), c.opacity(150), c.stroke(14), c.zigzag();
    c.place(4, 0, 0, 4, 0, 0), c.drawImage(5, 5, 30, 30, 1);
}

// Points and directions every 8.5 units along a path.
inline void positions(Canvas& c)
{
    using KAVO::operator""_fx;
    KAVO::Graphics2D::MMPathBuilder path;
    path.moveTo(10_fx, 90_fx).cubicTo(0, 20_fx, 60_fx, 0, 50_fx, 50_fx).lineTo(80_fx, 60_fx);
    path.moveTo(60_fx, 10_fx).lineTo(90_fx, 10_fx).lineTo(90_fx, 40_fx).close();
    c.stroke(0.5), c.path(path);
    MMPathPos pos = {};
    pos.path = path.storedPath();
    for (int32_t i = 0; i < 28; ++i) {
        Degrees direction = 0;
        c.context.getPathPos(pos, fx(8.5 * i), &direction);
        const MMPoint2D p = pos.current;
        c.line({p, {p.x - 5 * fixSin(direction), p.y + 5 * fixCos(direction)}});
        c.mark(KAVO::fixFloor(p.x), KAVO::fixFloor(p.y));
    }
}

template <MMJoinStyle join, MMCapStyle cap>
void dashed(Canvas& c)
{
    static const Fixed dashes[] = {9_fx, 6.5_fx, 0_fx, 6.5_fx};
    c.context.dashArray = dashes;
    c.context.dashCount = 4;
    c.context.dashOffset = 3.25_fx * (cap + 1);
    c.solid(kNight), c.stroke(4, join, cap), c.zigzag(cap == kCapButt);
    MMPoint2D centre = at(30, 70);
    c.context.drawCircularArc(&centre, 20_fx, 0, 300_fx, 0, 1);
    c.context.drawEllipticalRect(48_fx, 48_fx, 44_fx, 44_fx, 10_fx, 16_fx);
}

// Characters placed and turned one by one; a slant, anchors, and a clip rectangle that cuts them.
inline void placedText(Canvas& c)
{
    static const Fixed xs[] = {6_fx, 26.5_fx, 50_fx, 70_fx};
    static const Fixed ys[] = {20_fx, 26_fx, 32_fx, 20.5_fx};
    static const Degrees turns[] = {0, 30_fx, 90_fx, 200_fx};
    MMContext2D& context = c.context;
    context.charX = xs, context.charY = ys, context.charRotate = turns;
    context.charXCount = context.charYCount = context.charRotateCount = 4;
    c.text(u"gagi", 0, 0, 13);
    context.charXCount = context.charYCount = context.charRotateCount = 0;
    context.clipRight = 80, context.clipBottom = 84;
    context.fontStyle = kFontItalic;
    for (context.textAnchor = 0; context.textAnchor < 3; ++context.textAnchor)
        c.text(u"ig", 48, 60 + 15 * static_cast<int32_t>(context.textAnchor), 13);
}

inline void wrappedText(Canvas& c)
{
    c.context.fontSize = 9_fx;
    c.context.updateFont();
    c.context.penY = 14_fx;
    c.context.wrapWidth = 70_fx;
    c.context.wrapOffsetX = 8_fx;
    c.context.textDecoration = 1;
    c.context.drawWrappedText(Text(u"gag aga iii gggg ai gagagagagaga ig").data(), 0, 0);
}

struct Scene {
    const char* name;
    void (*draw)(Canvas&);
    bool ofItsOwnMemory = false; // one of each set of scenes that take the same
};

// A library without masks, layers and sources lacks the last of them.
#ifdef MM2D_WITHOUT_LAYERS
constexpr bool kHasAllScenes = false;
#else
constexpr bool kHasAllScenes = true;
#endif

const Scene kScenes[] = {
    // Paints.
    {"solid", [](Canvas& c) { c.star(); }, true},
    {"solid-translucent", [](Canvas& c) { c.opacity(120), c.star(); }},
    {"solid-alpha-colour", [](Canvas& c) { c.solid(0x60E63946), c.star(); }},
    {"solid-hard-edges", [](Canvas& c) { c.hard(), c.opacity(200), c.star(); }, true},
    {"solid-on-transparent",
     [](Canvas& c) {
         c.pixels.assign(c.pixels.size(), 0);
         c.star(), c.solid(kRed), c.opacity(128), c.place(1, 0, 0, 1, 7.25, 4.5), c.star();
     }},
    {"exclusive-or",
     [](Canvas& c) {
         c.solid(0x00FF7F40, kPaintXOR), c.star(), c.hard(), c.place(1, 0, 0, 1, 6, 6), c.star();
     }},
    {"linear", [](Canvas& c) { c.linear(), c.star(); }},
    {"linear-translucent", [](Canvas& c) { c.linear(), c.opacity(130), c.star(); }},
    {"linear-alpha-stops", [](Canvas& c) { c.linear(true), c.star(); }},
    {"linear-hard-edges", [](Canvas& c) { c.hard(), c.linear(true), c.opacity(200), c.star(); }},
    {"linear-skewed", [](Canvas& c) { c.place(.8, 0, .3, 1.1, 0, 0), c.linear(), c.star(); }},
    {"radial", [](Canvas& c) { c.radial(), c.star(); }},
    {"radial-translucent", [](Canvas& c) { c.radial(), c.opacity(130), c.star(); }},
    {"radial-alpha-stops", [](Canvas& c) { c.radial(true), c.star(); }},
    {"radial-elliptical", [](Canvas& c) { c.place(1, .2, 0, .7, 0, 0), c.radial(), c.star(); }},
    {"pattern-nearest", [](Canvas& c) { c.pattern(kFilterNearest), c.star(); }},
    {"pattern-nearest-t",
     [](Canvas& c) { c.pattern(kFilterNearest, true), c.opacity(150), c.star(); }},
    {"pattern-bilinear", [](Canvas& c) { c.pattern(kFilterBilinear), c.star(); }},
    {"pattern-bilinear-t",
     [](Canvas& c) { c.pattern(kFilterBilinear, true), c.opacity(150), c.star(); }},
    {"pattern-bicubic", [](Canvas& c) { c.pattern(kFilterBicubic), c.star(); }},
    {"pattern-bicubic-t",
     [](Canvas& c) { c.pattern(kFilterBicubic, true), c.opacity(150), c.star(); }},
    // Images.
    {"image-nearest", turnedImage<kFilterNearest>},
    {"image-bilinear", turnedImage<kFilterBilinear>, true},
    {"image-bicubic", turnedImage<kFilterBicubic>},
    {"image-placed", placedImages},
    {"image-parts-nearest", imageParts<kFilterNearest>},
    {"image-parts-bilinear", imageParts<kFilterBilinear>, true},
    {"image-parts-bicubic", imageParts<kFilterBicubic>},
    // Shapes.
    {"tangle-non-zero", [](Canvas& c) { c.tangle(40, 4, 88); }},
    {"tangle-even-odd", [](Canvas& c) { c.evenOdd(), c.opacity(190), c.tangle(40, 4, 88); }, true},
    {"tangle-hard-edges", [](Canvas& c) { c.evenOdd(), c.hard(), c.tangle(25, 4, 88); }, true},
    {"tangle-squeezed", [](Canvas& c) { c.tangle(90, 46, 2); }},
    {"curves", [](Canvas& c) { c.stroke(3), c.solid(kSand), c.opacity(200), c.blob(); }, true},
    {"curves-magnified", [](Canvas& c) { c.place(40, 0, 0, 37, -352, -1802), c.blob(); }},
    {"clipped", clipped},
    {"round-rectangles", [](Canvas& c) { c.roundRectangles(); }},
    {"round-rectangles-stroked", [](Canvas& c) { c.stroke(3), c.roundRectangles(); }, true},
    {"arcs-chord", [](Canvas& c) { c.arcs(0, 0); }},
    {"arcs-pie", [](Canvas& c) { c.arcs(1, 0); }, true},
    {"arcs-open", [](Canvas& c) { c.arcs(0, 1); }},
    {"path-positions", positions, true},
    // Strokes.
    {"joins-miter", [](Canvas& c) { c.solid(kNight), c.opacity(170), c.stroke(9), c.zigzag(); }},
    {"joins-round", [](Canvas& c) { c.stroke(9, kJoinRound, kCapRound), c.zigzag(); }, true},
    {"joins-bevel", [](Canvas& c) { c.stroke(9, kJoinBevel, kCapSquare), c.zigzag(); }},
    {"stroke-closed", [](Canvas& c) { c.stroke(6, kJoinMiter), c.zigzag(true); }},
    {"stroke-wide", [](Canvas& c) { c.stroke(40, kJoinRound), c.zigzag(); }},
    {"stroke-thin", [](Canvas& c) { c.stroke(0.2), c.zigzag(), c.hard(), c.zigzag(true); }},
    {"stroke-hard-edges",
     [](Canvas& c) { c.hard(), c.stroke(7, kJoinMiter, kCapRound), c.zigzag(); }, true},
    {"stroke-skewed",
     [](Canvas& c) {
         c.place(1.3, .2, -.5, .4, 20, 20), c.stroke(12, kJoinRound, kCapRound), c.zigzag();
     }},
    {"stroke-curves", [](Canvas& c) { c.opacity(140), c.stroke(16), c.blob(); }},
    {"stroke-linear", [](Canvas& c) { c.linear(), c.stroke(9, kJoinRound), c.zigzag(); }},
    {"stroke-radial",
     [](Canvas& c) { c.hard(), c.radial(), c.opacity(160), c.stroke(9, kJoinRound), c.zigzag(); }},
    {"stroke-pattern", [](Canvas& c) { c.pattern(kFilterBilinear), c.stroke(9), c.zigzag(true); }},
    {"dashes-butt", dashed<kJoinMiter, kCapButt>},
    {"dashes-round", dashed<kJoinRound, kCapRound>},
    {"dashes-square", dashed<kJoinBevel, kCapSquare>, true},
    // Text.
    {"text", [](Canvas& c) { c.texts(); }, true},
    {"text-translucent", [](Canvas& c) { c.solid(0xC0E63946), c.opacity(170), c.texts(); }},
    {"text-linear", [](Canvas& c) { c.linear(), c.texts(); }},
    {"text-radial", [](Canvas& c) { c.radial(true), c.texts(); }},
    {"text-pattern", [](Canvas& c) { c.pattern(kFilterBilinear), c.texts(); }, true},
    {"text-placed", placedText},
    {"text-wrapped", wrappedText, true},
#ifndef MM2D_WITHOUT_LAYERS
    // Masks and layers.
    {"mask-clip", maskClip, true},
    {"text-mask", maskText},
    {"mask-soft", maskSoft},
    {"layer-opacity", layerOpacity, true},
    {"layer-blend-modes", layerBlendModes},
    {"layer-operators", layerOperators},
    // Paint sources.
    {"source-linear", sourceLinear},
    {"source-radial", sourceRadial},
    {"source-conic", sourceConic},
    {"text-source", sourceText},
    {"source-tiles-nearest", sourceTiles<kFilterNearest>},
    {"source-tiles-bilinear", sourceTiles<kFilterBilinear>},
    {"source-tiles-bicubic", sourceTiles<kFilterBicubic>},
#endif
};

} // namespace KAVO::Graphics2D::pictures
