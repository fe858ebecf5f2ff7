// SPDX-License-Identifier: MIT
// Draws a document with the installed SVG engine, and succeeds when it is right.
#include <mm2d/svg/MMSvgDocument.h>

#include <cstdio>

int main()
{
    KAVO::Svg::MMSvgDocument drawing;
    const bool loaded =
        drawing.loadBytes("<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'>"
                          "<rect x='2' y='2' width='4' height='4' fill='#00f'/></svg>");
    KAVO::Pixel pixels[8 * 8] = {};
    const bool drawn = drawing.render({8, 8, 8 * 4, 0, pixels, 0}, {0, 0, 8, 8});
    int painted = 0;
    for (const KAVO::Pixel pixel : pixels)
        painted += pixel == 0xFF0000FF;

    const bool right = loaded && drawn && painted == 16;
    std::puts(right ? "the installed SVG engine works" : "the installed SVG engine is wrong");
    return right ? 0 : 1;
}
