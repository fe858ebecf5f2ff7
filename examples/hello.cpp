// SPDX-License-Identifier: MIT
// Draws a heart and writes it to a PPM file, which most viewers open.
#include <graphics2d/MMContext2D.h>

#include <cstdio>

using namespace KAVO;

static Pixel pixels[200 * 200];

int main(int argc, char** argv)
{
    // clang-format off
    constexpr uint32_t k = 0x10000; // 1.0: coordinates are 16.16
    const uint32_t heart[] = {
        1 | 2u << 16,                                    // one subpath, two segments
        1, 100 * k, 60 * k,                              // starts with this point
        2 | 1u << 28 | 3u << 30,                         // two curves, then it closes
        120 * k, 0, 240 * k, 60 * k, 100 * k, 180 * k,
        0 - 40 * k, 60 * k, 80 * k, 0, 100 * k, 60 * k};
    // clang-format on
    KAVO::Graphics2D::MMContext2D context;
    context.target = {200, 200, 200 * 4, 0xFFFFFFFF, pixels, 0};
    context.clipRight = context.clipBottom = 200;
    context.antiAlias = 1;
    context.fillPaint.paintColour = 0xFFD02040;
    context.drawPath(heart);

    FILE* file = std::fopen(argc > 1 ? argv[1] : "hello.ppm", "wb");
    if (!file) return 1;
    std::fputs("P6 200 200 255\n", file);
    for (const Pixel p : pixels)
        std::fprintf(file, "%c%c%c", p >> 16 & 255, p >> 8 & 255, p & 255);
    return std::fclose(file) == 0 ? 0 : 1;
}
