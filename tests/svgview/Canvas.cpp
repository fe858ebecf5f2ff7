// SPDX-License-Identifier: MIT
#include "svgview/Canvas.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <string>

using namespace KAVO;

namespace {

constexpr Pixel kGround = 0xFFFFFFFF;

// Largest difference between channels of two pixels of the same place.
int difference(const MMPixmap& a, const MMPixmap& b)
{
    int most = 0;
    for (size_t i = 0; i < size_t{a.width} * a.height; ++i)
        for (int shift = 0; shift < 24; shift += 8)
            most = std::max(most, std::abs(static_cast<int>(a.pixels[i] >> shift & 255) -
                                           static_cast<int>(b.pixels[i] >> shift & 255)));
    return most;
}

Svg::MMSvgDocument loaded(const std::string& name)
{
    Svg::MMSvgDocument drawing;
    EXPECT_TRUE(drawing.loadFile(DRAWINGS_FOLDER "/" + name)) << drawing.problem();
    return drawing;
}

} // namespace

// Scrolled pixels and strips together are what drawing everything gives. Coordinates are rounded
// from the middle of the window, so that edges may differ by what 1/65536 of a pixel makes.
TEST(Canvas, ScrollingIsLikeDrawingAnew)
{
    for (const char* name : {"metro.svg", "landscape.svg", "transforms.svg"}) {
        Svg::MMSvgDocument drawing = loaded(name);
        View view(drawing.size(), 160, 120);
        Canvas scrolled(kGround);
        std::mt19937 random(3);
        for (int i = 0; i < 40; ++i) {
            if (i % 10 == 9) view.zoom(1, 80, 60);
            const int dx = static_cast<int>(random() % 61) - 30;
            const int dy = static_cast<int>(random() % 61) - 30;
            view.pan(dx, dy);
            ASSERT_TRUE(scrolled.update(drawing, view, view.takeChange()));
            Canvas anew(kGround);
            ASSERT_TRUE(anew.update(drawing, view, {true, 0, 0}));
            ASSERT_LE(difference(scrolled.pixmap(), anew.pixmap()), 2)
                << name << ", step " << i << ", by " << dx << " " << dy;
        }
    }
}

// What stays in sight is not drawn a second time.
TEST(Canvas, DrawsTheStripsAlone)
{
    Svg::MMSvgDocument drawing = loaded("metro.svg");
    View view(drawing.size(), 160, 120);
    Canvas canvas(kGround);
    canvas.update(drawing, view, view.takeChange());
    constexpr Pixel kMark = 0xFF123456;
    std::fill_n(canvas.pixmap().pixels, 160 * 120, kMark);
    view.pan(-20, 10);
    canvas.update(drawing, view, view.takeChange());
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 160; ++x)
            ASSERT_EQ(canvas.pixmap().pixels[y * 160 + x] == kMark, x < 140 && y >= 10)
                << "at " << x << " " << y;
}
