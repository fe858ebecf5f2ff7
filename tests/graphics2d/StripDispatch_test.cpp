// Which strip filler each paint is drawn with, inside and on edges.
#include "graphics2d/StripDispatch.h"

#include <gtest/gtest.h>

namespace {

using namespace KAVO::Graphics2D;
using C = MMContext2D;

// The fillers of a paint: opaque, with paint or image alpha, with opacity, on edges.
struct Row {
    uint32_t type;
    uint8_t filter;
    StripFiller opaque, alpha, translucent, edge;
    bool flatCoverage; // of the translucent one
};

constexpr StripFiller kNothing = nullptr;

const Row kRows[] = {
    {kPaintSolid, 0, &C::drawSolidStrip, &C::drawSolidStrip, &C::drawSolidTStrip,
     &C::drawSolidTStrip, true},
    {kPaintSolid + 1, 0, &C::drawSolidTStrip, &C::drawSolidTStrip, kNothing, kNothing, false},
    {kPaintNone, 0, kNothing, kNothing, kNothing, kNothing, false},
    {kPaintXOR, 0, &C::drawSolidXORStrip, &C::drawSolidXORStrip, &C::drawSolidXORStrip,
     &C::drawSolidXORStrip, false},
    {kPaintLinearGradient, 0, &C::drawLinearGradientStrip, &C::drawLinearGradientTStrip,
     &C::drawLinearGradientTStrip, &C::drawLinearGradientTStrip, true},
    {kPaintRadialGradient, 0, &C::drawRadialGradientStrip, &C::drawRadialGradientTStrip,
     &C::drawRadialGradientTStrip, &C::drawRadialGradientTStrip, true},
    {kPaintPattern, 0, &C::drawPatternStrip, &C::drawPatternTStrip, &C::drawPatternTStrip,
     &C::drawPatternTStrip, true},
    {kPaintPattern, 1, &C::drawBiLinPatternStrip, &C::drawBiLinPatternTStrip,
     &C::drawBiLinPatternTStrip, &C::drawBiLinPatternTStrip, true},
    {kPaintPattern, 2, &C::drawBiCubPatternStrip, &C::drawBiCubPatternTStrip,
     &C::drawBiCubPatternTStrip, &C::drawBiCubPatternTStrip, true},
    {kPaintPattern, 3, kNothing, kNothing, kNothing, kNothing, true},
    {kPaintPicking, 0, &C::drawPickingStrip, &C::drawPickingStrip, &C::drawPickingStrip,
     &C::drawPickingStrip, false},
    {14, 0, kNothing, kNothing, kNothing, kNothing, false},
    {0xFFFFFFFF, 0, kNothing, kNothing, kNothing, kNothing, false},
};

TEST(StripDispatch, EveryPaintHasItsFillers)
{
    for (const Row& row : kRows) {
        MMContext2D context;
        MMPaint& paint = context.currentPaint;
        paint.paintType = row.type;
        context.patternFilter = row.filter;
        paint.paintOpacity = 255;
        EXPECT_EQ(chooseSpanFiller(context).filler, row.opaque) << row.type;
        EXPECT_EQ(chooseEdgeFiller(context), row.edge) << row.type;
        paint.paintHasAlpha = row.type != kPaintPattern;
        paint.patternHasAlpha = 1;
        EXPECT_EQ(chooseSpanFiller(context).filler, row.alpha) << row.type;
        paint.paintHasAlpha = paint.patternHasAlpha = 0;
        paint.paintOpacity = 254;
        EXPECT_EQ(chooseSpanFiller(context).filler, row.translucent) << row.type;
        EXPECT_EQ(chooseSpanFiller(context).flatCoverage, row.flatCoverage) << row.type;
    }
}

} // namespace
