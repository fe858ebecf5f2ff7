// SPDX-License-Identifier: MIT
// Draws one scene a number of times, for a counter of instructions on machines that an emulator
// stands in for.
//
//   mm2d_instructions SCENE classic|refined TIMES
//
// Prints how many pixels the scene paints. Without arguments it prints the names of the scenes.
#include "Paints.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

struct CountedScene {
    const char* name;
    double size; // of a square, pixels a side
    Draw (*make)(bool refined);
};

Draw solidSquare(uint32_t colour, bool refined)
{
    constexpr double kSide = kSceneSize;
    Shape square;
    square.colour = colour;
    square.outline.moveTo({0, 0});
    square.outline.lineTo({kSide, 0});
    square.outline.lineTo({kSide, kSide});
    square.outline.lineTo({0, kSide});
    square.outline.close();
    return drawWithOurs(std::vector<Shape>{square}, refined);
}

Draw opaque(bool refined)
{
    return solidSquare(0xFF3060C0, refined);
}

Draw translucent(bool refined)
{
    return solidSquare(0x803060C0, refined);
}

Draw linear(bool refined)
{
    return drawWithOurs(PaintedSquare{PaintedSquare::Linear, 255, kSceneSize}, refined);
}

Draw radial(bool refined)
{
    return drawWithOurs(PaintedSquare{PaintedSquare::Radial, 255, kSceneSize}, refined);
}

Draw copy(bool refined)
{
    return drawWithOurs(PaintedSquare{PaintedSquare::Image, 255, kImageSize}, refined);
}

Draw bilinear(bool refined)
{
    return drawWithOurs(
        PaintedSquare{PaintedSquare::Image, 255, kSceneSize, Filter::Bilinear, 3.9, 10}, refined);
}

Draw imageWithAlpha(bool refined)
{
    return drawWithOurs(
        PaintedSquare{PaintedSquare::Image, 255, kImageSize, Filter::Nearest, 1, 0, true}, refined);
}

constexpr CountedScene kScenes[] = {
    {"opaque", kSceneSize, opaque},
    {"translucent", kSceneSize, translucent},
    {"linear", kSceneSize, linear},
    {"radial", kSceneSize, radial},
    {"copy", kImageSize, copy},
    {"bilinear", kSceneSize, bilinear},
    {"alpha", kImageSize, imageWithAlpha},
};

} // namespace

int main(int count, char** arguments)
{
    if (count == 1) {
        for (const CountedScene& scene : kScenes)
            std::puts(scene.name);
        return 0;
    }
    for (const CountedScene& scene : kScenes) {
        if (count != 4 || std::string(arguments[1]) != scene.name) continue;
        const Draw draw = scene.make(std::string(arguments[2]) == "refined");
        for (int times = std::atoi(arguments[3]); times > 0; --times)
            draw();
        std::printf("%.0f\n", scene.size * scene.size);
        return 0;
    }
    std::fputs("usage: mm2d_instructions [SCENE classic|refined TIMES]\n", stderr);
    return 1;
}
