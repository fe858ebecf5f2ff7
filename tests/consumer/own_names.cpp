// SPDX-License-Identifier: MIT
// A program that has names and headers of its own like those of the library, and spells the
// library's headers with the folder in front.
#include "math/Matrix2D.h"

#include <mm2d/graphics2d/MMContext2D.h>

#include <cstdio>

struct Pixel {
    unsigned char red, green, blue;
};
using Fixed = double;
enum Degrees { kPaintSolid, kPaintNone, kFixedOne, kIdentityMatrix };
class Coverage {};
void wrapAdd();
void applySign();

int main()
{
    KAVO::Pixel pixels[4 * 4] = {};
    KAVO::Graphics2D::MMContext2D context;
    context.target = {4, 4, 4 * 4, 0, pixels, 0};
    context.clipRight = context.clipBottom = 4;
    context.fillPaint.paintColour = 0xFF123456;
    const int32_t width = static_cast<int32_t>(OwnMatrix().elements[0]) << 16;
    MMPoint2D square[] = {{0, 0}, {width, 0}, {width, width}, {0, width}};
    context.currentPaint = context.fillPaint;
    context.rasterPolygon(square, 4);
    int painted = 0;
    for (const KAVO::Pixel pixel : pixels)
        painted += pixel == 0xFF123456;
    std::puts(painted == 4 ? "names do not meet" : "the installed library is wrong");
    return painted == 4 ? 0 : 1;
}
