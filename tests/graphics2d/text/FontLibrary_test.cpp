// SPDX-License-Identifier: MIT
// Starting and sharing the font engine, with an engine and a heap that fail.
#include "tests/support/FailingHeap.h"
#include "tests/support/TextScene.h"
#include "tests/support/UserUnits.h"

#include <cstdlib>
#include <memory>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

// A null value takes the variable out of the environment.
void setVariable(const char* name, const char* value)
{
    if (value != nullptr)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

} // namespace

TEST(FontLibrary, IsStartedOnceAndEndedWithTheLastContext)
{
    FreshEngine fresh;
    for (bool firstGoesFirst : {false, true}) {
        fakeFontEngine = {};
        MMContext2D* first = new MMContext2D;
        MMContext2D* second = new MMContext2D;
        EXPECT_EQ(fakeFontEngine.inits, 1);
        delete (firstGoesFirst ? first : second);
        EXPECT_EQ(fakeFontEngine.exits, 0);
        delete (firstGoesFirst ? second : first);
        EXPECT_EQ(fakeFontEngine.exits, 1);
        EXPECT_EQ(fontEngine, nullptr);
    }
}

TEST(FontLibrary, TakesFolderAndCacheBudgetFromTheEnvironment)
{
    const std::string deep(3000, 'd');
    const struct {
        const char* folder;
        std::string path;
        const char* kilobytes;
        uint32_t budget;
    } cases[] = {
        {nullptr, "/usr/lib/ybn/lib/fonts/AMCSL.TTF", nullptr, 40960},
        {"/x", "/x/AMCSL.TTF", "10", 10240},
        {"/x/", "/x//AMCSL.TTF", "200", 204800},
        {"", "/AMCSL.TTF", "64 and more", 65536},
        {deep.c_str(), deep + "/AMCSL.TTF", "9", 40960},
        {"", "/AMCSL.TTF", "201", 40960},
        {"", "/AMCSL.TTF", "4294967306", 40960},
        {"", "/AMCSL.TTF", "", 40960},
    };
    for (const auto& c : cases) {
        FreshEngine fresh;
        setVariable("YBN_RES_FONT_PATH", c.folder);
        setVariable("SVG_FONT_CACHE_KB", c.kilobytes);
        MMContext2D context;
        EXPECT_EQ(fakeFontEngine.fontPath, c.path);
        EXPECT_EQ(context.fontCache.budget, c.budget) << c.kilobytes;
        EXPECT_EQ(context.fontCache.maxEntrySize, 2048u);
    }
    setVariable("YBN_RES_FONT_PATH", nullptr);
    setVariable("SVG_FONT_CACHE_KB", nullptr);
}

TEST(FontLibrary, SetsDefaultsWeightAndLines)
{
    FreshEngine fresh;
    MMContext2D context;
    EXPECT_EQ(context.fontSize, 12 * kFixedOne);
    EXPECT_EQ(context.fontWeight, 4);
    context.releaseFontLib();
    context.fontSize = 20 * kFixedOne;
    EXPECT_EQ(context.initFontLib(), 0u);
    EXPECT_EQ(context.lineHeight, 20 * kFixedOne); // (800 + 200) / 1000 of the size
    for (uint8_t weight : {0, 5, 6, 9}) {
        context.fontWeight = weight;
        context.fontSize = (10 + weight) * kFixedOne;
        context.updateFont();
        EXPECT_EQ(fakeFontEngine.boldFraction, weight < 6 ? 0 : 6556);
        EXPECT_EQ(context.lineHeight, context.fontSize);
    }
    context.penX = context.penY = 5;
    context.newLine();
    EXPECT_EQ(context.penX, 0);
    EXPECT_EQ(context.penY, 5 + context.lineHeight);
    EXPECT_EQ(context.newLineFlag, 1);
}

TEST(FontLibrary, WithoutGlyphsNothingIsDrawn)
{
    for (FontCall refused : {kAddFont, kGetGlyph}) {
        TextScene scene(20, 1u << refused);
        scene.draw(u"agc", 0, 15);
        EXPECT_TRUE(scene.blank()) << refused;
        EXPECT_NEAR(scene.context.penX, 0, 4) << refused;
    }
}

// Whichever of its heap calls a constructor is refused, or all from one on: it neither ends the
// text of the contexts that are there nor keeps those that come after it from theirs.
TEST(FontLibrary, AContextWithoutMemoryIsNoneOfTheOthersBusiness)
{
    for (bool othersAreThere : {false, true})
        for (bool forGood : {false, true})
            for (uint32_t n = 1;; ++n) {
                SCOPED_TRACE(testing::Message() << othersAreThere << forGood << " call " << n);
                FreshEngine fresh;
                uint32_t calls;
                {
                    std::unique_ptr<Picture> before;
                    if (othersAreThere) before = std::make_unique<Picture>(20);
                    FailingHeap heap;
                    forGood ? heap.failFrom(n) : heap.failAt(n);
                    MMContext2D poor;
                    calls = heap.calls();
                    heap.failAt(0);
                    Picture after(20);
                    after.context.drawText(Text(u"ab").data(), 0, 15_fx);
                    EXPECT_FALSE(after.blank());
                    poor.releaseFontLib();
                    if (before != nullptr) {
                        before->context.drawText(Text(u"ab").data(), 0, 15_fx);
                        EXPECT_FALSE(before->blank());
                    }
                }
                EXPECT_EQ(fontEngine, nullptr);
                EXPECT_EQ(fontEngineUsers, 0);
                EXPECT_EQ(fakeFontEngine.exits, fakeFontEngine.inits);
                if (calls < n) break;
            }
}

TEST(FontLibrary, WithoutMetricsNothingIsDrawnOrMeasured)
{
    TextScene scene(20);
    scene.context.releaseFontLib();
    scene.context.penX = 7;
    scene.draw(u"abc", 0, 15);
    scene.context.renderText(Text(u"abc").data(), 3, 1, 0);
    EXPECT_EQ(scene.context.getTextWidth(Text(u"abc").data(), 3), 0);
    EXPECT_EQ(scene.context.penX, 7);
    EXPECT_TRUE(scene.blank());
}
