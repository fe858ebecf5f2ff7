// SPDX-License-Identifier: MIT
// No pixel is lost where a paint meets another shape of the same colour.
#include "tests/svg/Drawing.h"

namespace {

TEST(TouchingPaints, AGradientBesideItsOwnColourLeavesNoGap)
{
    const KAVO::Svg::Picture picture =
        drawn("<svg width='100' height='40'><linearGradient id='fade'>"
              "<stop offset='.5' stop-color='black'/><stop offset='1' stop-color='red'/>"
              "</linearGradient><rect width='50' height='40'/>"
              "<rect x='50' width='50' height='40' fill='url(#fade)'/></svg>",
              100, 40);
    for (int x = 0; x < 100; ++x)
        EXPECT_EQ(picture.at(x, 20) & (x < 75 ? 0xFFFFFF : 0x00FFFF), 0u) << x;
}

} // namespace
