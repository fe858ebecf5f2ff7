// SPDX-License-Identifier: MIT
#include "guide/Recipes.h"

#include <functional>
#include <thread>

using namespace KAVO;
using namespace KAVO::Graphics2D;

void drawInTwoThreads(Pixel* pixels, int32_t width, int32_t height,
                      void (*draw)(MMContext2D& context))
{
    const int32_t middle = height / 2;
    MMContext2D upper, lower; // made and ended on one thread, as the font engine wants it
    setTarget(upper, pixels, width, middle);
    setTarget(lower, pixels + middle * width, width, height - middle);
    lower.transform.translate(0, fixFromInt(-middle));
    std::thread other(draw, std::ref(upper));
    draw(lower); // no text: two contexts must not draw it at the same time
    other.join();
}
