// SPDX-License-Identifier: MIT
// guide OUTPUT.png [FONT]: the recipes of docs/guide.md, one panel each.
#include "common/Picture.h"
#include "guide/Recipes.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

constexpr int kGap = 8;
constexpr int kColumns = 4;

void drawHits(MMContext2D& context)
{
    MMPathBuilder ring;
    ring.circle(100_fx, 60_fx, 50_fx).circle(100_fx, 60_fx, 25_fx);
    context.antiAlias = 1;
    context.fillRule = kFillEvenOdd;
    context.fillPaint.paintColour = 0xFFA8D0F0;
    context.drawPath(ring.words());
    for (int32_t row = 8; row < kRecipeHeight; row += 13)
        for (int32_t column = 9; column < kRecipeWidth; column += 13) {
            context.fillPaint.paintColour =
                covers(context, ring, column, row) ? 0xFFB23A48 : 0xFFCCCCCC;
            MMPathBuilder dot;
            dot.circle(fixFromInt(column), fixFromInt(row), 2_fx);
            context.drawPath(dot.words());
        }
}

void drawScrolled(MMContext2D& context)
{
    const char* const lines[] = {"one", "two", "three", "four", "five", "six", "seven", "eight"};
    List list = {lines, 8, 0};
    drawList(context, list);
    scrollList(context, list, 33);
}

void drawWrapped(MMContext2D& context)
{
    const Fixed end = drawParagraph(context, "A paragraph is broken into lines that fit a width.",
                                    10_fx, 8_fx, 110_fx);
    drawParagraph(context, "The next one begins where it ends.", 10_fx, end + 6_fx, 180_fx);
}

void drawThreaded(MMContext2D& context)
{
    drawInTwoThreads(context.target.pixels, kRecipeWidth, kRecipeHeight, fillShapes);
}

void drawBanded(MMContext2D& context)
{
    const auto emit = [](void* pixels, const Pixel* rows, int32_t first, int32_t count) {
        std::copy_n(rows, count * kRecipeWidth, static_cast<Pixel*>(pixels) + first * kRecipeWidth);
    };
    if (!drawInBands(kRecipeHeight, strokeLines, emit, context.target.pixels))
        context.outOfMemory = kScratchExhausted;
}

constexpr void (*kRecipes[])(MMContext2D&) = {
    fillShapes,   strokeLines,  paintGradients, drawImages,  drawLabels, drawWrapped, drawHits,
    drawScrolled, drawThreaded, drawBanded,     drawClipped, drawGroups, paintSources};
constexpr int kRows = (static_cast<int>(std::size(kRecipes)) + kColumns - 1) / kColumns;

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || !setFontFile(argc > 2 ? argv[2] : LATIN_FONT)) {
        std::fputs("usage: guide OUTPUT.png [FONT]\n", stderr);
        return 1;
    }
    Picture sheet(kColumns * (kRecipeWidth + kGap) + kGap, kRows * (kRecipeHeight + kGap) + kGap,
                  0xFFE4E7EB);
    int index = 0;
    for (const auto recipe : kRecipes) {
        Picture panel(kRecipeWidth, kRecipeHeight, 0xFFFFFFFF);
        MMContext2D context;
        setTarget(context, panel.pixels.data(), panel.width, panel.height);
        recipe(context);
        if (context.outOfMemory != 0) {
            std::fputs("guide: out of memory\n", stderr);
            return 1;
        }
        const int left = kGap + index % kColumns * (kRecipeWidth + kGap);
        const int top = kGap + index / kColumns * (kRecipeHeight + kGap);
        for (int y = 0; y < panel.height; ++y)
            std::copy_n(&panel.at(0, y), panel.width, &sheet.at(left, top + y));
        ++index;
    }
    const std::string problem = writePng(argv[1], sheet);
    if (problem.empty()) return 0;
    std::fprintf(stderr, "guide: %s: %s\n", argv[1], problem.c_str());
    return 1;
}
