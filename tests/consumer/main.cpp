// Uses what the installed library exports, one thing from each folder, and succeeds when all of it
// is right.
#include <graphics2d/MMContext2D.h>
#include <graphics2d/RegionFlush.h>
#include <math/FixedMath.h>
#include <memory/Vector.h>
#include <util/Base64.h>

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
    context.clipRight = context.clipBottom = 8;
    context.currentPaint = context.fillPaint;
    MMG_flushRegion(&context.target, 0, 0, 8, 8, 0xFFFFFFFF);
    context.rasterPolygon(square, 4);

    int painted = 0;
    for (const Pixel pixel : pixels)
        painted += pixel == 0xFF000000;
    const bool draws = painted == 16 && pixels[0] == 0xFFFFFFFF;

    Vector vector;
    uint8_t decoded[4] = {};
    uint8_t popped = 0;
    const uint8_t text[] = {'T', 'W', 'F', 'u'}; // "Man"
    const bool stores = vector.initialize(1, 4, 0) == 0 && vector.push(text) == 0 &&
                        vector.pop(&popped) == 0 && popped == 'T';
    vector.deinitialize();
    const bool decodes = MMdecodeBase64(text, 4, decoded) == 3 && decoded[2] == 'n';

    const bool right = draws && stores && decodes && fixMul(near, far) == fixFromInt(12);
    std::puts(right ? "the installed library works" : "the installed library is wrong");
    return right ? 0 : 1;
}
