// SPDX-License-Identifier: MIT
// Drawings that are cut off, damaged or malicious must be refused or drawn, quickly and cleanly.
#include "tests/svg/Drawing.h"

#include <fstream>
#include <random>
#include <sstream>

using namespace KAVO::Svg;

namespace {

constexpr int kSide = 48;

void renderIfItParses(const std::string& text)
{
    MMSvgDocument document;
    if (!document.loadBytes(text)) return;
    drawn(document, kSide, kSide);
    document.elementAt({0, 0, kSide, kSide}, kSide / 2, kSide / 2);
}

std::vector<std::string> sampleDrawings()
{
    std::vector<std::string> drawings;
    for (const char* name :
         {"shapes", "fill-rules", "path-grammar", "transforms", "colours", "strokes", "gradients",
          "landscape", "metro", "text", "images", "../../fuzz/corpus/svg/filters"}) {
        std::ifstream file(std::string(DRAWINGS_FOLDER "/") + name + ".svg");
        std::ostringstream text;
        text << file.rdbuf();
        EXPECT_FALSE(text.str().empty()) << name;
        drawings.push_back(text.str());
    }
    return drawings;
}

void replaceANumber(std::string& text, std::mt19937& random)
{
    static const std::vector<std::string> replacements = {
        "0",     "-1",        "1e9",       "-1e9",
        "32768", "-32768.5",  "1e-9",      "99999999999999999999",
        "1e400", "NaN",       "inf",       "",
        "M",     "url(#)",    "url(#sky)", "%",
        "none",  "100%",      "1e5%",      "rotate(",
        "Z",     "a1 1 0 11", "use",       "svg"};
    const size_t from = text.find_first_of("0123456789", random() % text.size());
    if (from == text.npos) return;
    const size_t end = text.find_first_not_of("0123456789.", from);
    text.replace(from, end - from, replacements[random() % replacements.size()]);
}

void changeAByte(std::string& text, std::mt19937& random)
{
    const char c = static_cast<char>(32 + random() % 96);
    text[random() % text.size()] = c;
}

TEST(HostileDrawings, NumbersReplacedBytesChangedOrCutOff)
{
    std::mt19937 random(20);
    for (const std::string& drawing : sampleDrawings())
        for (int round = 0; round < 400; ++round) {
            std::string text = drawing;
            for (int change = 0; change < 5; ++change)
                (round % 2 == 0 ? replaceANumber : changeAByte)(text, random);
            // A cut usually breaks the XML; closing the path data instead keeps it alive.
            if (round % 4 == 0) text.resize(random() % text.size());
            if (round % 8 == 0) text += round % 16 == 0 ? "\"/></g></svg>" : "\"/></svg>";
            SCOPED_TRACE(text);
            renderIfItParses(text);
        }
}

TEST(HostileDrawings, UsesWithoutEnd)
{
    const std::string head = "<svg xmlns:xlink='x' viewBox='0 0 9 9'>";
    renderIfItParses(head + "<g id='a'><use xlink:href='#a'/></g></svg>");
    renderIfItParses(head + "<use id='a' xlink:href='#b'/><use id='b' xlink:href='#a'/></svg>");
    renderIfItParses(head + "<symbol id='s'><use xlink:href='#s'/></symbol>"
                            "<use xlink:href='#s'/></svg>");

    // Each level uses the one before ten times: 10^20 shapes in all.
    std::string tower = head + "<defs><path id='n0' d='M0 0h1v1z' display='none'/>";
    for (int level = 1; level <= 20; ++level) {
        tower += "<g id='n" + std::to_string(level) + "'>";
        for (int i = 0; i < 10; ++i)
            tower += "<use xlink:href='#n" + std::to_string(level - 1) + "'/>";
        tower += "</g>";
    }
    renderIfItParses(tower + "</defs><use xlink:href='#n20'/></svg>");
}

// A glyph is rendered whole, however little of it is seen.
TEST(HostileDrawings, MoreHugeLettersThanThePictureIsWorth)
{
    const auto isLeftOut = [](int letters, const std::string& attributes) {
        const std::string word(static_cast<size_t>(letters), 'm');
        for (const std::string name : {"text", "textArea"}) {
            MMSvgDocument document;
            EXPECT_TRUE(document.loadBytes("<svg width='48' height='48'><" + name +
                                           " width='9' height='9' " + attributes + ">" + word +
                                           "</" + name + "></svg>"));
            drawn(document, kSide, kSide);
            if (!lacks(document, "very large text")) return false;
        }
        return true;
    };
    EXPECT_TRUE(isLeftOut(300, "font-size='1000'"));
    EXPECT_TRUE(isLeftOut(300, "font-size='1' transform='scale(1000)'"));
    EXPECT_TRUE(isLeftOut(1, "font-size='1e30'"));
    EXPECT_FALSE(isLeftOut(20, "font-size='1000'"));
    EXPECT_FALSE(isLeftOut(10000, "font-size='200'"));
}

TEST(HostileDrawings, DeeplyNestedGroups)
{
    std::string text = "<svg>";
    for (int i = 0; i < 20000; ++i)
        text += "<g>";
    text += "<rect width='9' height='9'/>";
    for (int i = 0; i < 20000; ++i)
        text += "</g>";
    renderIfItParses(text + "</svg>");
}

// Drawings with a limit of rows, and whether their shape is left out.
void expectLeftOut(uint64_t limit, std::initializer_list<std::pair<std::string, bool>> cases)
{
    LoadOptions options;
    options.limits.shapeRows = limit;
    for (const auto& [svg, isLeftOut] : cases) {
        MMSvgDocument document(options);
        ASSERT_TRUE(document.loadBytes(svg));
        drawn(document, 20, 20);
        EXPECT_EQ(lacks(document, "a shape of more lines than the limit"), isLeftOut)
            << svg.substr(0, 80);
    }
}

// Lines that cross the whole picture again and again cost their rows; beyond the limit the shape is
// left out and named, and what is flat or outside costs little.
TEST(SvgHostileDrawings, ShapesOfMoreRowsThanTheLimitAreNamed)
{
    const auto zigzag = [](int lines, const char* to) {
        std::string path = "M0 0";
        for (int i = 0; i < lines; ++i)
            path += i % 2 == 0 ? to : "L1 0";
        return "<svg width='20' height='20'><path d='" + path + "'/></svg>";
    };
    expectLeftOut(2000, {{zigzag(90, "L9 20"), false},
                         {zigzag(110, "L9 20"), true},
                         {zigzag(110, "L9 5"), false},
                         {zigzag(110, "L9 0"), false},
                         {zigzag(1100, "L9-9"), false}});
}

// Rows that very many lines cross count more, but not for lines above or below the picture.
TEST(SvgHostileDrawings, RowsOfManyLinesCountMore)
{
    const auto zigzag = [](int lines, const char* to, const char* back) {
        std::string path = "M0 0";
        for (int i = 0; i < lines; ++i)
            path += i % 2 == 0 ? to : back;
        return "<svg width='20' height='20'><path d='" + path + "L4 2'/></svg>";
    };
    expectLeftOut(200000, {{zigzag(40000, "L9 2", "L1 0"), true},
                           {zigzag(8000, "L9 20", "L1 0"), false},
                           {zigzag(40000, "L9-9", "L1-1"), false}});
}

} // namespace
