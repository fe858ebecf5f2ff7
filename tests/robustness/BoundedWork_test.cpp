// Work stays in proportion to what is seen of a drawing and to the length of a text, however far
// images are magnified. It is counted, not timed.
#include "tests/pictures/Canvas.h"
#include "tests/support/FakeLayoutEngine.h"

#include <gtest/gtest.h>

namespace {

// What the bilinear filler is asked for.
uint32_t spans;
int64_t spanPixels;

} // namespace

// The linker leads the dispatch of opaque bilinear spans here.
extern "C" {

void __real__ZN4KAVO10Graphics2D11MMContext2D21drawBiLinPatternStripEv(MMContext2D*);
void __wrap__ZN4KAVO10Graphics2D11MMContext2D21drawBiLinPatternStripEv(MMContext2D*);

// At an even address, as pointers to members need: an odd one stands for a virtual function.
[[gnu::aligned(16)]] void
__wrap__ZN4KAVO10Graphics2D11MMContext2D21drawBiLinPatternStripEv(MMContext2D* context)
{
    ++spans;
    spanPixels += (context->spanEnd >> 16) - (context->spanStart >> 16);
    __real__ZN4KAVO10Graphics2D11MMContext2D21drawBiLinPatternStripEv(context);
}

} // extern "C"

namespace pictures {
namespace {

TEST(BoundedWork, AnImageMagnifiedAMillionTimesTakesTheVisiblePixelsOnly)
{
    for (const Degrees angle : {0, fx(30), fx(90), fx(181)})
        for (const bool throughTransform : {false, true}) {
            Canvas scene;
            MMContext2D& c = scene.context;
            scene.hard();
            scene.image.pixmapExtra = 0;
            spans = 0;
            spanPixels = 0;
            if (throughTransform) {
                c.transform = {fx(32767), 0, 0, fx(32767), 0, 0}; // the most that a matrix holds
                c.transform.rotate(angle);
                scene.drawImage(-4, -4, 8, 8);
            } else {
                // A 32nd of a texel over 32,767 pixels.
                const MMFixedRegion from = {0, 0, 0x800, 0x800};
                const MMFixedRegion to = {fx(-16000), fx(-16000), fx(16767), fx(16767)};
                const MMPixmap target = c.target;
                c.drawImage(&scene.image, &from, &target, &to, angle);
            }
            EXPECT_GT(spans, 0u) << angle;
            EXPECT_LE(spans, uint32_t{kSide}) << angle;
            EXPECT_LE(spanPixels, int64_t{kSide} * kSide) << angle;
            EXPECT_LE(c.scratchStack.peakWords, 1024u);
        }
}

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
        c.drawText(text.data(), 0, fx(10));
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

} // namespace
} // namespace pictures
