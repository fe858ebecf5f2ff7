// SPDX-License-Identifier: MIT
// Scenes drawn through masks and in layers.
#pragma once

#include "graphics2d/layers/MMLayer.h"
#include "tests/pictures/Canvas.h"

#include <array>

namespace KAVO::Graphics2D::pictures {

// Levels of the whole canvas. Scenes may be drawn at any place, so that nothing else is big enough.
struct CanvasMask {
    CanvasMask() : mask(makeMask(levels.data(), 0, 0, kSide, kSide)) {}
    CanvasMask(const CanvasMask&) = delete;
    CanvasMask& operator=(const CanvasMask&) = delete;

    std::array<uint8_t, kSide * kSide> levels;
    MMMask mask;
};

// The canvas draws into the mask, then through it.
template <class Draw>
void clipTo(Canvas& c, CanvasMask& clip, Draw draw)
{
    c.context.maskTarget = &clip.mask;
    draw();
    c.context.maskTarget = nullptr;
    c.context.clipMask = &clip.mask;
}

// Every kind of paint through a shape in a shape.
inline void maskClip(Canvas& c)
{
    CanvasMask outer, inner;
    clipTo(c, outer, [&] { c.roundRectangles(); });
    clipTo(c, inner, [&] { c.star(); });
    c.linear(true), c.star();
    c.pattern(kFilterBilinear, true), c.opacity(200), c.blob();
    c.solid(kNight), c.stroke(5), c.zigzag();
    c.context.clipMask = nullptr;
}

inline void maskText(Canvas& c)
{
    CanvasMask clip;
    clipTo(c, clip, [&] { c.text(u"gag", 4, 60, 40), c.text(u"gi", 40, 90, 20); });
    c.radial(), c.star(), c.texts();
    c.context.clipMask = nullptr;
}

// A mask from the light of a layer.
inline void maskSoft(Canvas& c)
{
    CanvasMask soft;
    {
        MMLayer layer(c.context);
        c.linear(), c.star();
        layer.fill(soft.mask, kMaskFromLuminance);
        layer.discard();
    }
    c.context.clipMask = &soft.mask;
    c.solid(kRed), c.blob();
    c.drawImage(20, 20, 60, 60);
    c.context.clipMask = nullptr;
}

// A group of which one is a group again.
inline void layerOpacity(Canvas& c)
{
    MMLayerOptions faint;
    faint.opacity = 150;
    const MMLayer group(c.context, faint);
    c.star();
    c.solid(kRed), c.blob();
    {
        const MMLayer inner(c.context, 20, 10, 70, 90, faint);
        c.solid(kNight), c.arcs(1, 0);
        c.linear(true), c.roundRectangles();
    }
    c.stroke(3), c.zigzag();
}

// Bars, each put on all that is there in a mode of its own.
inline void layerBars(Canvas& c, MMBlendMode first, int32_t count)
{
    c.radial(true), c.star();
    for (int32_t i = 0; i < count; ++i) {
        MMLayerOptions options;
        options.blendMode = static_cast<MMBlendMode>(first + i);
        options.opacity = static_cast<uint8_t>(255 - 8 * i);
        const int32_t left = kSide * i / count, right = kSide * (i + 1) / count;
        const MMLayer layer(c.context, left, 0, right, kSide, options);
        c.linear(true);
        c.polygon({at(left + 0.5, 8), at(right - 0.5, 8), at(right - 0.5, 90), at(left + 0.5, 90)});
    }
}

inline void layerBlendModes(Canvas& c)
{
    layerBars(c, kBlendNormal, 16);
}

inline void layerOperators(Canvas& c)
{
    c.pixels.assign(c.pixels.size(), 0);
    layerBars(c, kBlendClear, 12);
}

} // namespace KAVO::Graphics2D::pictures
