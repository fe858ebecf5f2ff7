// SPDX-License-Identifier: MIT
// Scenes painted by gradient sources.
#pragma once

#include "graphics2d/sources/MMGradientSource.h"
#include "graphics2d/sources/MMTileSource.h"
#include "tests/pictures/Canvas.h"

namespace KAVO::Graphics2D::pictures {

// Draws with a paint of the record that set makes of it.
template <class Source = MMGradientSource, class Set, class Draw>
void drawSource(Canvas& c, Set set, Draw draw)
{
    Source source;
    set(source);
    draw();
    c.solid(kBlue); // the record ends here
}

inline void sourceLinear(Canvas& c)
{
    c.place(.9, .2, -.1, 1, 0, 0);
    const auto set = [&](MMSpread spread, bool translucent) {
        return [=, &c](MMGradientSource& source) {
            setLinearSource(c.context.fillPaint, source, at(20, 20), at(35, 28),
                            c.context.transform, stops(translucent), spread);
        };
    };
    drawSource(c, set(kSpreadRepeat, false), [&] { c.star(); });
    drawSource(c, set(kSpreadReflect, true), [&] { c.blob(); });
    drawSource(c, set(kSpreadPad, false), [&] { c.roundRectangles(); });
}

// A focal point inside and one on the edge, a cone, and circles that shrink.
inline void sourceRadial(Canvas& c)
{
    c.place(.9, .1, -.2, 1, 10, 0);
    const auto set = [&](MMSourceCircle start, MMSourceCircle end, MMSpread spread) {
        return [=, &c](MMGradientSource& source) {
            setRadialSource(c.context.fillPaint, source, start, end, c.context.transform,
                            stops(true), spread);
        };
    };
    drawSource(c, set({at(30, 30), 0}, {at(40, 40), 20_fx}, kSpreadReflect), [&] { c.star(); });
    drawSource(c, set({at(60, 40), 0}, {at(60, 60), 20_fx}, kSpreadPad), [&] { c.blob(); });
    drawSource(c, set({at(20, 80), 4_fx}, {at(60, 80), 9_fx}, kSpreadRepeat),
               [&] { c.roundRectangles(); });
    drawSource(c, set({at(50, 50), 30_fx}, {at(40, 60), 3_fx}, kSpreadPad),
               [&] { c.zigzag(), c.tangle(25, 4, 88); });
}

inline void sourceConic(Canvas& c)
{
    c.place(1, .1, 0, .7, 0, 10);
    const auto set = [&](MMPoint2D centre, double start, double end, MMSpread spread) {
        return [=, &c](MMGradientSource& source) {
            setConicSource(c.context.fillPaint, source, centre, fx(start), fx(end),
                           c.context.transform, stops(false), spread);
        };
    };
    drawSource(c, set(at(44, 40), 0, 360, kSpreadPad), [&] { c.star(); });
    drawSource(c, set(at(60, 60), 30, -60, kSpreadReflect), [&] { c.blob(); });
    drawSource(c, set(at(30, 100), 10, 50, kSpreadRepeat), [&] { c.roundRectangles(); });
}

template <MMPatternFilter filter>
void sourceTiles(Canvas& c)
{
    const auto set = [&](MMTileMode across, MMTileMode down) {
        return [=, &c](MMTileSource& source) {
            setTileSource(c.context.fillPaint, source, c.image, c.context.transform, filter, across,
                          down);
        };
    };
    c.place(1.3, .4, -.3, 1.2, 0, 0), c.image.pixmapExtra = 0;
    drawSource<MMTileSource>(c, set(kTileRepeat, kTileMirror), [&] { c.star(); });
    c.place(-.6, .1, 0, .8, 90, 5), c.image.pixmapExtra = 1;
    drawSource<MMTileSource>(c, set(kTileMirror, kTileRepeat), [&] { c.roundRectangles(); });
    c.place(1, 0, 0, 1, 3, 2), c.image.pixmapExtra = 0;
    drawSource<MMTileSource>(c, set(kTileRepeat, kTileRepeat), [&] { c.blob(); });
}

inline void sourceText(Canvas& c)
{
    drawSource(
        c,
        [&](MMGradientSource& source) {
            setConicSource(c.context.fillPaint, source, at(40, 50), 0, 200_fx, c.context.transform,
                           stops(true), kSpreadReflect);
        },
        [&] { c.texts(); });
    drawSource<MMTileSource>(
        c,
        [&](MMTileSource& source) {
            setTileSource(c.context.fillPaint, source, c.image, c.context.transform, kFilterNearest,
                          kTileRepeat, kTileMirror);
        },
        [&] { c.text(u"gag", 4, 60, 40); });
}

} // namespace KAVO::Graphics2D::pictures
