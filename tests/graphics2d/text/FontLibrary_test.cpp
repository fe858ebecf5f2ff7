// SPDX-License-Identifier: MIT
// Starting and sharing the font engine, with an engine and a heap that fail.
#include "tests/support/FailingHeap.h"
#include "tests/support/TextScene.h"

#include <cstdlib>

using namespace KAVO;

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

TEST(FontLibrary, isStartedOnceAndEndedWithTheLastContext)
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

TEST(FontLibrary, takesFolderAndCacheBudgetFromTheEnvironment)
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

TEST(FontLibrary, setsDefaultsWeightAndLines)
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

TEST(FontLibrary, withoutGlyphsNothingIsDrawn)
{
    for (FontCall refused : {kAddFont, kGetGlyph}) {
        TextScene scene(20, 1u << refused);
        scene.draw(u"agc", 0, 15);
        EXPECT_TRUE(scene.blank()) << refused;
        EXPECT_NEAR(scene.context.penX, 0, 4) << refused;
    }
}

TEST(FontLibrary, aContextWithoutMemoryForItsMetricsEndsTheEngineUnderTheOthers)
{
    FreshEngine fresh;
    TextScene scene(20);
    {
        MMContext2D poor;
        poor.releaseFontLib();
        FailingHeap heap;
        heap.failAt(1);
        EXPECT_EQ(poor.initFontLib(), 0u);
        EXPECT_EQ(poor.fontMetrics, nullptr);
        EXPECT_EQ(fontEngineUsers, 1);
    }
    EXPECT_EQ(fontEngineUsers, 0);
    EXPECT_EQ(fakeFontEngine.exits, 1);
    scene.draw(u"abc", 0, 15); // without an engine
    scene.context.updateFont();
    EXPECT_TRUE(scene.blank());
}
