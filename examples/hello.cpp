// SPDX-License-Identifier: MIT
#include <cstdio>
#include <graphics2d/convenience/MMContextState.h>
#include <graphics2d/convenience/MMPathBuilder.h>
using namespace KAVO;
using namespace KAVO::Graphics2D;

int main(int argc, char** argv)
{
    static Pixel pixels[200 * 200]; // 0xAARRGGBB, black
    MMContext2D context;
    setTarget(context, pixels, 200, 200);
    context.antiAlias = 1;
    context.fillPaint.paintColour = 0xFFD02040;
    MMPathBuilder heart;
    heart.moveTo(100_fx, 60_fx).cubicTo(120_fx, 0, 240_fx, 60_fx, 100_fx, 180_fx);
    heart.cubicTo(-40_fx, 60_fx, 80_fx, 0, 100_fx, 60_fx);
    context.drawPath(heart.words());

    FILE* file = std::fopen(argc > 1 ? argv[1] : "hello.ppm", "wb");
    if (!file || std::fputs("P6 200 200 255\n", file) < 0) return 1;
    for (const Pixel p : pixels)
        std::fprintf(file, "%c%c%c", p >> 16 & 255, p >> 8 & 255, p & 255);
    return std::fclose(file) == 0 ? 0 : 1;
}
