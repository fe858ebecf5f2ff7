// Draws a heart and writes it to a PPM file, which most viewers open.
#include <graphics2d/MMContext2D.h>

#include <cstdio>

constexpr uint16_t kSize = 200;
static Pixel pixels[kSize * kSize];

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
    context.target = {kSize, kSize, kSize * 4, 0xFFFFFFFF, pixels, 0};
    context.clipRight = kSize;
    context.clipBottom = kSize;
    context.antiAlias = 1;
    for (Pixel& pixel : pixels)
        pixel = 0xFFFFFFFF;
    context.fillPaint.paintColour = 0xFFD02040;
    context.drawPath(heart);

    FILE* file = std::fopen(argc > 1 ? argv[1] : "hello.ppm", "wb");
    if (!file) return 1;
    std::fprintf(file, "P6 %d %d 255\n", kSize, kSize);
    for (const Pixel p : pixels)
        std::fprintf(file, "%c%c%c", p >> 16 & 255, p >> 8 & 255, p & 255);
    return std::fclose(file) == 0 ? 0 : 1;
}
