// Draws a little with the installed library and succeeds when the picture is right.
#include <graphics2d/MMContext2D.h>
#include <math/FixedMath.h>

#include <cstdio>

int main()
{
    Pixel pixels[8 * 8] = {};

    // The square from (2, 2) to (6, 6).
    constexpr Fixed near = fixFromInt(2);
    constexpr Fixed far = fixFromInt(6);
    MMPoint2D square[] = {{near, near}, {far, near}, {far, far}, {near, far}};

    KAVO::Graphics2D::MMContext2D context;
    context.target = {8, 8, 8 * 4, 0xFFFFFFFF, pixels, 0};
    context.clipRight = 8;
    context.clipBottom = 8;
    context.currentPaint = context.fillPaint;
    context.rasterPolygon(square, 4);

    int painted = 0;
    for (const Pixel pixel : pixels)
        painted += pixel == 0xFF000000;

    const bool right = painted == 16 && fixMul(near, far) == fixFromInt(12);
    std::puts(right ? "the installed library works" : "the installed library draws wrongly");
    return right ? 0 : 1;
}
