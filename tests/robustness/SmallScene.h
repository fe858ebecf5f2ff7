// A small picture in which every public drawing operation does something, for tests that run all of
// them over and over.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "tests/support/UserUnits.h"

#include <array>

namespace robust {

using namespace KAVO::Graphics2D;

constexpr uint16_t kSide = 24;
constexpr uint16_t kImageSide = 4;

struct SmallScene {
    SmallScene()
    {
        for (uint32_t i = 0; i < texels.size(); ++i)
            texels[i] = 0xFF000000 | i * 0x0F1B07;
        reset();
    }

    void reset()
    {
        pixels.fill(0xFFFFFFFF);
        setState();
    }

    // Sets all fields that operations and tests change to what this scene draws with.
    void setState()
    {
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
        c.textDecoration = 1;
    }

    void dash()
    {
        context.dashArray = dashes.data();
        context.dashCount = static_cast<uint16_t>(dashes.size());
        context.dashOffset = 0;
    }

    // A solid paint; the image is there to make a pattern of it.
    MMPaint paint(Pixel colour) const
    {
        MMPaint paint = {};
        paint.paintColour = colour;
        paint.paintOpacity = 255;
        paint.patternTransform = kIdentityMatrix;
        paint.patternImage = image;
        return paint;
    }

    std::array<Pixel, kSide * kSide> pixels;
    std::array<Pixel, kImageSide * kImageSide> texels;
    std::array<Fixed, 2> dashes = {3 * kFixedOne, 2 * kFixedOne};
    MMPoint2D star[5] = {at(4, 20), at(12, 3), at(20, 20), at(3, 9), at(21, 9)};
    MMLinkPath starPath = {star, 5};
    MMPixmap image = {kImageSide, kImageSide, kImageSide * 4, 0, texels.data(), 0};
    MMContext2D context;
};

} // namespace robust
