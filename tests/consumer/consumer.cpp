// SPDX-License-Identifier: MIT
// Uses what the installed library exports, one thing from each folder, and succeeds when all of it
// is right.
#include <graphics2d/convenience/MMContextState.h>
#include <math/FixedLiteral.h>
#include <math/FixedMath.h>
#include <memory/Vector.h>
#include <util/Base64.h>

#include <cstdio>

using namespace KAVO;

int main()
{
    Pixel pixels[8 * 8] = {};
    KAVO::Graphics2D::MMContext2D context;
    setTarget(context, pixels, 8, 8);
    context.drawEllipticalRect(4_fx, 4_fx, 2_fx, 2_fx, 0, 0);
    int painted = 0;
    for (const Pixel pixel : pixels)
        painted += pixel == 0xFF000000;

    Vector vector;
    uint8_t popped = 0, decoded[4] = {};
    const uint8_t text[] = {'T', 'W', 'F', 'u'}; // "Man"
    const bool stores = vector.initialize(1, 4, 0) == 0 && vector.push(text) == 0 &&
                        vector.pop(&popped) == 0 && popped == 'T';
    vector.deinitialize();
    const bool decodes = MMdecodeBase64(text, 4, decoded) == 3 && decoded[2] == 'n';
    const bool multiplies = fixMul(2_fx, 6_fx) == 12_fx;

    const bool right = painted == 16 && stores && decodes && multiplies;
    std::puts(right ? "the installed library works" : "the installed library is wrong");
    return right ? 0 : 1;
}
