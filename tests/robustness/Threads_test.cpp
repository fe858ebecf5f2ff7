// SPDX-License-Identifier: MIT
// Contexts on threads of their own: all that they share is the font engine, which shapes, paints
// and images do not touch. What this says is said under the thread sanitizer.
#include "tests/pictures/Scenes.h"

#include <thread>

namespace KAVO::Graphics2D::pictures {
namespace {

void drawAllButText(Canvas& canvas, std::vector<std::vector<Pixel>>& pictures)
{
    for (const Scene& scene : kScenes) {
        if (std::string(scene.name).find("text") == 0) continue;
        canvas.reset();
        scene.draw(canvas);
        pictures.push_back(canvas.pixels);
    }
}

TEST(Threads, TwoContextsWithoutTextDrawAsOneDoes)
{
    Canvas canvas, first, second; // contexts come and go on one thread
    std::vector<std::vector<Pixel>> expected, pictures[2];
    std::thread firstThread([&] { drawAllButText(first, pictures[0]); });
    std::thread secondThread([&] { drawAllButText(second, pictures[1]); });
    firstThread.join();
    secondThread.join();
    drawAllButText(canvas, expected);
    EXPECT_EQ(pictures[0], expected);
    EXPECT_EQ(pictures[1], expected);
}

} // namespace
} // namespace KAVO::Graphics2D::pictures
