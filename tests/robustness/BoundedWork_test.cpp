// SPDX-License-Identifier: MIT
// Work stays in proportion to the length of a text, and however wide a pen is its outline has few
// points. It is counted, not timed.
#include "graphics2d/strokes/StrokeOutline.h"
#include "graphics2d/strokes/Stroker.h"
#include "tests/pictures/Canvas.h"
#include "tests/support/FakeLayoutEngine.h"

#include <gtest/gtest.h>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace KAVO::Graphics2D::pictures {
namespace {

TEST(BoundedWork, AHundredThousandCharactersTakeAGlyphForEachOnceAndAFewCallsEach)
{
    constexpr uint32_t kCount = 100000;
    TextScene scene(40);
    MMContext2D& c = scene.context;
    c.fontSize = 2 * kFixedOne;
    c.wrapWidth = 30 * kFixedOne;
    std::u16string characters;
    for (uint32_t i = 0; i < kCount; ++i)
        characters += static_cast<char16_t>(i % 7 == 6 ? ' ' : 'A' + i % 26);
    Text text(characters);

    for (Fixed clipped : {0, 1}) { // what lies outside is measured all the same
        c.clipRight = clipped != 0 ? 1 : 40;
        c.drawText(text.data(), 0, 10_fx);
        c.getTextWidth(text.data(), 0xFFFF);
        EXPECT_LE(fakeFontEngine.glyphsMade, 27);
    }
    fakeLayoutEngine = {};
    c.drawWrappedText(text.data(), 0, 0);
    EXPECT_LE(fakeFontEngine.glyphsMade, 27);
    // A glyph to measure each character by, those behind a line's end a second time; its code.
    EXPECT_LE(fakeLayoutEngine.calls, int32_t{3 * kCount});
    EXPECT_LE(c.scratchStack.peakWords, 1024u);
}

// Vertices of the outline that the stroker builds for a line.
uint32_t outlineVertices(MMContext2D& context, const std::vector<MMPoint2D>& line,
                         const StrokePen& pen)
{
    const uint32_t count = static_cast<uint32_t>(line.size());
    const Subpath noCurves = {nullptr, 0, false};
    const ClipWindow window(context);
    StrokeOutline outline(context.scratchStack, pen, count, context.transform, window);
    EXPECT_TRUE(outline.build({line.data(), count, false, noCurves}));
    return outline.count();
}

// However wide the pen and whatever the transform: a round join or cap makes no more vertices than
// half a turn of the finest step, a smooth turn a twelfth of that, and each seven more.
TEST(BoundedWork, JoinsAndCapsHaveABoundedNumberOfVertices)
{
    const Fixed far = INT32_MAX;
    const std::vector<MMPoint2D> lines[] = {{{-far, -far}, {far, far}, {-far, -far + 1}, {far, 0}},
                                            {{0, 0}, {1, 0}, {0, 0}, {0, 1}},
                                            {{far, 0}, {-far, 1}, {far, 2}, {-far, 3}},
                                            {at(0, 0), at(100, 0), at(200, 20), at(300, 66)}};
    for (Fixed halfWidth : {1, 1_fx, 3000_fx, far})
        for (Fixed scale : {1, 1_fx, 100_fx, far})
            for (Fixed limit : {0, 32767_fx})
                for (uint8_t style : {0, 1, 2}) {
                    MMContext2D context;
                    context.transform = {scale, 0, 0, scale, 0, 0};
                    context.strokeHalfWidth = halfWidth;
                    const Degrees step = DevicePen(context).stepFor(4);
                    const StrokePen pen = {halfWidth, limit, style, style, step, {kOne30, 0}};
                    for (const std::vector<MMPoint2D>& line : lines)
                        EXPECT_LE(outlineVertices(context, line, pen),
                                  4 * (style == kJoinRound ? 1800u + 7 : 150u + 7));
                }
}

TEST(BoundedWork, ManyJoinsOrDashesShareABoundedNumberOfVertices)
{
    MMContext2D context;
    for (Fixed halfWidth : {1_fx, 64_fx, 30000_fx}) {
        context.strokeHalfWidth = halfWidth;
        const DevicePen pen(context);
        EXPECT_EQ(pen.stepFor(4000), pen.step);
        for (uint64_t count : {10000u, 65535u, 1u << 20, 1u << 28}) // 45 degrees at most
            EXPECT_LE(count * (kDegrees180 / pen.stepFor(count)), (1u << 23) + 4 * count);
    }
}

} // namespace
} // namespace KAVO::Graphics2D::pictures
