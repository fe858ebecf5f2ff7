// A small picture in which every public drawing operation does something, for tests that run all of
// them over and over.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "tests/support/EncodedPath.h"
#include "tests/support/UserUnits.h"

#include <array>
#include <vector>

namespace robust {

using namespace KAVO::Graphics2D;

constexpr uint16_t kSide = 24;
constexpr uint16_t kImageSide = 4;

struct SmallScene {
    SmallScene() { reset(); }

    // Sets every field that drawing reads to what this scene draws with.
    void reset()
    {
        pixels.fill(0xFFFFFFFF);
        MMContext2D& c = context;
        c.target = {kSide, kSide, kSide * 4, 0xFFFFFFFF, pixels.data(), 0};
        c.clipLeft = c.clipTop = 0;
        c.clipRight = c.clipBottom = kSide;
        c.transform = kIdentityMatrix;
        c.antiAlias = 1;
        c.fillRule = kFillNonZero;
        c.fillPaint = paint(0xFF2060C0);
        c.strokePaint = paint(0xFF802010);
        c.currentPaint = c.fillPaint;
        c.strokeHalfWidth = kFixedOne;
        c.joinStyle = kJoinRound;
        c.capStyle = kCapRound;
        c.dashArray = nullptr;
        c.fontSize = 5 * kFixedOne;
        c.lineHeight = 6 * kFixedOne;
        c.penX = 2 * kFixedOne;
        c.penY = 8 * kFixedOne;
        c.wrapWidth = 20 * kFixedOne;
        c.wrapOffsetX = c.wrapOffsetY = 0;
        c.textAnchor = kAnchorStart;
        c.textDecoration = 1;
        c.charXCount = c.charYCount = c.charRotateCount = 0;
        c.drawSuppressed = 0;
        for (uint32_t i = 0; i < texels.size(); ++i)
            texels[i] = 0xFF000000 | i * 0x0F1B07;
        image = {kImageSide, kImageSide, kImageSide * 4, 0, texels.data(), 0};
    }

    void dash()
    {
        context.dashArray = dashes.data();
        context.dashCount = static_cast<uint16_t>(dashes.size());
        context.dashOffset = 0;
    }

    static MMPaint paint(Pixel colour)
    {
        MMPaint paint = {};
        paint.paintColour = colour;
        paint.paintOpacity = 255;
        return paint;
    }

    std::array<Pixel, kSide * kSide> pixels;
    std::array<Pixel, kImageSide * kImageSide> texels;
    std::array<Fixed, 2> dashes = {3 * kFixedOne, 2 * kFixedOne};
    MMPixmap image;
    MMContext2D context;
};

} // namespace robust
