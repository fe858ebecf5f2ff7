// SPDX-License-Identifier: MIT
// Blend modes, groups, soft masks, and text as a clip.
#include "gallery/Canvas.h"
#include "graphics2d/convenience/MMGradient.h"
#include "graphics2d/layers/MMLayer.h"

#include <vector>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

constexpr Pixel kInk = 0xFF222222;

void label(Canvas& canvas, const char* utf8, double x, double y)
{
    canvas.fill(kInk);
    canvas.context().fontSize = 9_fx;
    canvas.context().drawText(MMText(utf8).units(), fixed(x), fixed(y));
}

// A mask of the whole picture that draw() fills.
struct Mask {
    template <class Draw>
    Mask(Canvas& canvas, Draw draw)
        : levels(canvas.picture.pixels.size()),
          mask(makeMask(levels.data(), 0, 0, static_cast<int16_t>(canvas.picture.width),
                        static_cast<int16_t>(canvas.picture.height)))
    {
        canvas.context().maskTarget = &mask;
        draw();
        canvas.context().maskTarget = nullptr;
    }

    std::vector<uint8_t> levels;
    MMMask mask;
};

void drawPhoto(Canvas& canvas, double x, double y, double width, double height)
{
    MMContext2D& context = canvas.context();
    canvas.fill(0xFFFFFFFF);
    MMGradient sky({{0, 0xFF1D4E89}, {0.6_fx, 0xFFE09F3E}, {1_fx, 0xFFB23A48}});
    sky.setLinear(context, context.fillPaint, {0, fixed(y)}, {0, fixed(y + height)});
    canvas.rectangle(x, y, width, height);
}

void drawPair(Canvas& canvas, double x, double y, uint8_t opacity)
{
    MMPathBuilder one, other;
    canvas.fill(0xFF1D4E89, opacity);
    canvas.draw(one.circle(fixed(x), fixed(y), 24_fx));
    canvas.fill(0xFFE09F3E, opacity);
    canvas.draw(other.circle(fixed(x + 26), fixed(y), 24_fx));
}

} // namespace

// Sixteen modes: a fading bar over stripes.
void drawBlendScene(Canvas& canvas)
{
    static const char* const kNames[] = {"normal", "multiply",   "screen",     "overlay",
                                         "darken", "lighten",    "dodge",      "burn",
                                         "hard",   "soft",       "difference", "exclusion",
                                         "hue",    "saturation", "colour",     "luminosity"};
    static const Pixel kStripes[] = {0xFFB23A48, 0xFFE09F3E, 0xFF2A7F78, 0xFF1D4E89};
    canvas.place();
    MMContext2D& context = canvas.context();
    for (int i = 0; i < 16; ++i) {
        const double x = 8 + i % 8 * 46.5, y = i < 8 ? 8 : 106;
        for (int k = 0; k < 4; ++k) {
            canvas.fill(kStripes[k]);
            canvas.rectangle(x + 10 * k, y, 10, 74);
        }
        MMLayerOptions options;
        options.blendMode = static_cast<MMBlendMode>(kBlendNormal + i);
        {
            const MMLayer layer(context, options);
            MMGradient bar({{0, 0xFFF0D0C0}, {0.5_fx, 0xFF40A0E0}, {1_fx, 0xFF202020}});
            bar.setLinear(context, context.fillPaint, {0, fixed(y + 8)}, {0, fixed(y + 66)});
            canvas.rectangle(x + 4, y + 8, 32, 58);
        }
        label(canvas, kNames[i], x, y + 86);
    }
}

// Overlapping discs as one and by themselves; a mask that fades; letters as a window.
void drawGroupScene(Canvas& canvas)
{
    canvas.place();
    MMContext2D& context = canvas.context();
    for (int i = 0; i < 4; ++i) {
        canvas.fill(0xFFCCCCCC);
        canvas.rectangle(12, 26 + 18 * i, 170, 6);
    }
    MMLayerOptions faint;
    faint.opacity = 140;
    {
        const MMLayer group(context, faint);
        drawPair(canvas, 40, 56, 255);
    }
    drawPair(canvas, 128, 56, 140);
    label(canvas, "one group of opacity 0.55", 8, 104);
    label(canvas, "each by itself", 116, 104);

    const Mask fading(canvas, [&] {
        for (int i = 0; i < 44; ++i) { // stripes, one denser than the other
            canvas.fill(0xFFFFFFFF, static_cast<uint8_t>(255 * i / 43));
            canvas.rectangle(200 + 4 * i, 20, 4, 70);
        }
    });
    context.clipMask = &fading.mask;
    drawPhoto(canvas, 200, 20, 172, 70);
    context.clipMask = nullptr;
    label(canvas, "a mask that fades", 200, 104);

    const Mask letters(canvas, [&] {
        context.fontSize = 72_fx;
        context.drawText(MMText("window").units(), 60_fx, 176_fx);
    });
    context.clipMask = &letters.mask;
    drawPhoto(canvas, 20, 112, 340, 84);
    context.clipMask = nullptr;
}
