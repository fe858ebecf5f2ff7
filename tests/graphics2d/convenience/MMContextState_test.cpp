// SPDX-License-Identifier: MIT
#include "graphics2d/convenience/MMContextState.h"

#include "graphics2d/convenience/MMGradient.h"
#include "math/FixedLiteral.h"
#include "tests/support/Picture.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace KAVO;
using namespace KAVO::Graphics2D;

TEST(Target, IsWhatIsDrawnIntoAndTheClip)
{
    Pixel pixels[3 * 5] = {};
    MMContext2D context;
    context.clipLeft = context.clipTop = 7;
    setTarget(context, pixels, 3, 2, 5 * 4);
    context.drawEllipticalRect(0, 0, 100_fx, 100_fx, 0, 0);
    const Pixel black = 0xFF000000;
    const Pixel expected[3 * 5] = {black, black, black, 0, 0, black, black, black};
    EXPECT_EQ(std::memcmp(pixels, expected, sizeof pixels), 0);
    setTarget(context, pixels, 3, 5);
    EXPECT_EQ(context.refined, 1);
    EXPECT_EQ(context.target.rowBytes, 12u);
    EXPECT_EQ(context.target.backgroundColour, 0xFFFFFFFF);

    setTarget(context, pixels, 40000, -1);
    EXPECT_EQ(context.target.width, 32767);
    EXPECT_EQ(context.target.rowBytes, 160000u);
    EXPECT_EQ(context.clipRight, 32767);
    EXPECT_EQ(context.target.height, 0);
    EXPECT_EQ(context.clipBottom, 0);
}

// Whatever a scope does to the fields that the state names, a picture drawn after it is the same.
TEST(ContextState, ComesBackAtTheEndOfItsScope)
{
    static const Fixed dashes[] = {5_fx, 3_fx};
    MMGradient gradient({{0, 0xFF102030}, {1_fx, 0xFFE0D0C0}});
    Picture scene;
    MMContext2D& context = scene.context;
    context.transform.rotate(10_fx);
    context.fillRule = kFillEvenOdd;
    context.clipLeft = 3;
    context.clipBottom = 60;
    context.dashArray = dashes;
    context.dashCount = 2;
    context.dashOffset = 2_fx;
    context.strokePaint.paintType = kPaintSolid;
    context.strokePaint.paintColour = 0xFF3050F0;
    context.strokeHalfWidth = 1.5_fx;
    context.miterLimit = 2_fx;
    gradient.setLinear(context, context.fillPaint, {0, 0}, {60_fx, 10_fx});
    const auto bytesOf = [&] {
        std::vector<unsigned char> bytes(sizeof context);
        std::memcpy(bytes.data(), static_cast<void*>(&context), sizeof context);
        return bytes;
    };
    const std::vector<unsigned char> before = bytesOf();
    {
        const MMContextState state(context);
        context.transform = {1, 2, 3, 4, 5, 6};
        context.clipLeft = context.clipTop = context.clipRight = context.clipBottom = 11;
        context.fillPaint.paintType = context.strokePaint.paintType = kPaintXOR;
        context.fillPaint.paintColour = context.strokePaint.paintColour = 0x12345678;
        context.fillPaint.paintOpacity = context.strokePaint.paintOpacity = 99;
        context.strokeHalfWidth = context.miterLimit = context.dashOffset = 77;
        context.joinStyle = kJoinBevel;
        context.capStyle = kCapSquare;
        context.dashArray = nullptr;
        context.dashCount = 1;
        context.fillRule = kFillNonZero;
        context.patternFilter = kFilterBicubic;
        context.imageOpacity = 3;
        context.antiAlias = 0;
        context.refined = 1;
    }
    EXPECT_TRUE(bytesOf() == before);
}

// The holder's paint is the one that the set-up makes over arrays of the caller's.
TEST(Gradient, PaintsAsTheArraysItStandsFor)
{
    const Pixel colours[] = {0xFFC03020, 0x80F0E040, 0xFF2060C0};
    const Fixed offsets[] = {0, 0.25_fx, 1_fx};
    Pixel rampColours[gradientRampRoom(3)];
    Fixed rampOffsets[gradientRampRoom(3)];
    for (const bool radial : {false, true}) {
        Picture plain, held;
        MMGradient gradient({{0, 0xFFC03020}, {0.25_fx, 0x80F0E040}, {1_fx, 0xFF2060C0}});
        for (Picture* picture : {&plain, &held}) {
            picture->context.transform = {0x14000, 0x3000, -0x2000, 0xC000, 3_fx, 5_fx};
            picture->context.fillPaint.paintOpacity = 200;
        }
        const Matrix2D& transform = plain.context.transform;
        MMPaint& paint = plain.context.fillPaint;
        const GradientStops stops = {colours, offsets, 3};
        const GradientRamp ramp = {rampColours, rampOffsets};
        if (radial) {
            setRadialGradient(paint, {20_fx, 20_fx}, 18_fx, transform, stops, ramp);
            gradient.setRadial(held.context, held.context.fillPaint, {20_fx, 20_fx}, 18_fx);
        } else {
            setLinearGradient(paint, {4_fx, 4_fx}, {30_fx, 22_fx}, transform, stops, ramp);
            gradient.setLinear(held.context, held.context.fillPaint, {4_fx, 4_fx}, {30_fx, 22_fx});
        }
        for (Picture* picture : {&plain, &held})
            picture->context.drawEllipticalRect(20_fx, 20_fx, 16_fx, 14_fx, 5_fx, 5_fx);
        EXPECT_TRUE(plain.pixels == held.pixels);
        EXPECT_FALSE(plain.blank());
    }
}
