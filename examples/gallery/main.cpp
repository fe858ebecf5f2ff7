// SPDX-License-Identifier: MIT
// gallery: draws what the library can do into one PNG file.
#include "gallery/Canvas.h"

#include <cstdio>
#include <iterator>

namespace {

using Scene = void (*)(Canvas&);

constexpr Scene kScenes[] = {
    drawFillScene,     drawRoundedScene,  drawArcScene,      drawJoinScene,    drawDashScene,
    drawHairlineScene, drawCrossingScene, drawPositionScene, drawPaintScene,   drawImageScene,
    drawSizeScene,     drawLetterScene,   drawEnglishScene,  drawChineseScene, drawThaiScene,
    drawBlendScene,    drawGroupScene,    drawSpreadScene,   drawTileScene,    drawModesScene};

constexpr int kColumns = 3;
constexpr int kGap = 10;
constexpr int kCount = static_cast<int>(std::size(kScenes));
constexpr int kRows = (kCount + kColumns - 1) / kColumns;

int fail(const std::string& message)
{
    std::fprintf(stderr, "gallery: %s\n", message.c_str());
    return 1;
}

void beginPanel(Canvas& canvas, int index)
{
    canvas.beginPanel(kGap + index % kColumns * (kPanelWidth + kGap),
                      kGap + index / kColumns * (kPanelHeight + kGap));
    canvas.fill(0xFFFFFFFF);
    canvas.rectangle(0, 0, kPanelWidth, kPanelHeight);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) return fail("usage: gallery OUTPUT.png");
    Canvas canvas(kColumns * (kPanelWidth + kGap) + kGap, kRows * (kPanelHeight + kGap) + kGap,
                  0xFFE4E7EB);
    int index = 0;
    for (const Scene scene : kScenes) {
        beginPanel(canvas, index++);
        scene(canvas);
    }
    if (!canvas.problem.empty()) return fail(canvas.problem);
    if (canvas.outOfMemory()) return fail("out of memory");
    makeOpaque(canvas.picture);
    const std::string problem = writePng(argv[1], canvas.picture);
    return problem.empty() ? 0 : fail(std::string(argv[1]) + ": " + problem);
}
