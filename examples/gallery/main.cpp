// gallery: draws what the library can do into one PNG file.
#include "gallery/Canvas.h"

#include <cstdio>
#include <iterator>

namespace {

using Scene = void (*)(Canvas&);

constexpr Scene kScenes[] = {
    drawFillScene,     drawRoundedScene,  drawArcScene,      drawJoinScene,  drawDashScene,
    drawHairlineScene, drawCrossingScene, drawPositionScene, drawPaintScene, drawImageScene};

constexpr int kColumns = 3;
constexpr int kGap = 10;

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: gallery OUTPUT.png\n", stderr);
        return 1;
    }
    const int count = static_cast<int>(std::size(kScenes));
    const int rows = (count + kColumns - 1) / kColumns;
    Canvas canvas(kColumns * (kPanelWidth + kGap) + kGap, rows * (kPanelHeight + kGap) + kGap,
                  0xFFE4E7EB);
    for (int i = 0; i < count; ++i) {
        canvas.beginPanel(kGap + i % kColumns * (kPanelWidth + kGap),
                          kGap + i / kColumns * (kPanelHeight + kGap));
        canvas.fill(0xFFFFFFFF);
        canvas.rectangle(0, 0, kPanelWidth, kPanelHeight);
        kScenes[i](canvas);
    }
    if (canvas.context.outOfMemory) {
        std::fputs("gallery: out of memory\n", stderr);
        return 1;
    }
    makeOpaque(canvas.picture);
    const std::string problem = writePng(argv[1], canvas.picture);
    if (!problem.empty()) {
        std::fprintf(stderr, "gallery: %s: %s\n", argv[1], problem.c_str());
        return 1;
    }
    return 0;
}
