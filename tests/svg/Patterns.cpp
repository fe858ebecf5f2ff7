// SPDX-License-Identifier: MIT
// Where the content of patterns lies, and what takes the place of patterns that are none.
#include "tests/svg/Drawing.h"

#include <cmath>

namespace {

constexpr uint32_t kColour = 0x00FFFFFF;

// A tile of 20 by 20 from (5, 10) on, whose upper left quarter is blue.
TEST(SvgPatterns, ContentStartsAtTheCornerOfEachTile)
{
    const char* const contents[] = {
        "<pattern id='p' patternUnits='userSpaceOnUse' x='5' y='10' width='20' height='20'>"
        "<rect width='10' height='10' fill='blue'/></pattern>",
        "<pattern id='p' patternUnits='userSpaceOnUse' x='405' y='-390' width='20' height='20'>"
        "<rect width='10' height='10' fill='blue'/></pattern>",
        "<pattern id='p' patternUnits='userSpaceOnUse' x='5' width='20' height='20'"
        " patternTransform='scale(-1)'><rect width='10' height='10' fill='blue'/></pattern>",
        "<pattern id='p' patternUnits='userSpaceOnUse' x='5' y='10' width='20' height='20'"
        " patternContentUnits='objectBoundingBox'>"
        "<rect width='.125' height='.125' fill='blue'/></pattern>",
        "<pattern id='p' x='.0625' y='.125' width='.25' height='.25' viewBox='0 0 2 2'>"
        "<rect width='50%' height='50%' fill='blue'/></pattern>"};
    for (const char* content : contents) {
        const KAVO::Svg::Picture picture =
            drawn("<svg width='80' height='80'>" + std::string(content) +
                      "<rect width='80' height='80' fill='url(#p)'/></svg>",
                  80, 80);
        for (int y = 0; y < 80; ++y)
            for (int x = 0; x < 80; ++x) {
                const bool inside = (x + 15) % 20 < 10 && (y + 10) % 20 < 10;
                ASSERT_EQ(picture.at(x, y) & kColour, inside ? 0x0000FFu : 0xFFFFFFu)
                    << content << " at " << x << ", " << y;
            }
    }
}

// Too wide for a picture of its own.
TEST(SvgPatterns, TilesMayBeVeryWide)
{
    const KAVO::Svg::Picture picture =
        drawn("<svg width='600' height='600'><pattern id='p' patternUnits='userSpaceOnUse' "
              "width='65636' height='2'><rect width='65636' height='1' fill='blue'/></pattern>"
              "<rect width='600' height='600' fill='url(#p)'/></svg>",
              600, 600);
    for (int y = 0; y < 600; ++y)
        for (const int x : {0, 300, 599})
            ASSERT_EQ(picture.at(x, y) & kColour, y % 2 == 0 ? 0x0000FFu : 0xFFFFFFu)
                << x << ' ' << y;
}

// A ground that fills its tile, with stripes of half a tile's width on it. Skewed, rotated and
// scaled tiles meet between pixels, which shows nowhere.
TEST(SvgPatterns, TilesThatMeetBetweenPixelsLeaveNoSeams)
{
    const struct {
        const char* transform;
        double acrossX; // tiles to the right for a pixel to the right, and for one down
        double acrossY;
    } cases[] = {{"skewX(45)", 1 / 20.0, -1 / 20.0},
                 {"scale(1.03)", 1 / 20.6, 0},
                 {"rotate(90) scale(.815)", 0, 1 / 16.3},
                 {"translate(.5 .5) skewY(-45) scale(2 1)", 1 / 40.0, 0}};
    for (const auto& c : cases) {
        const KAVO::Svg::Picture picture =
            drawn("<svg width='80' height='80'><pattern id='p' patternUnits='userSpaceOnUse' "
                  "width='20' height='20' patternTransform='" +
                      std::string(c.transform) +
                      "'><rect width='20' height='20' fill='#ccf'/>"
                      "<rect width='10' height='20' fill='blue'/></pattern>"
                      "<rect width='80' height='80' fill='url(#p)'/></svg>",
                  80, 80);
        for (int y = 0; y < 80; ++y)
            for (int x = 0; x < 80; ++x) {
                const double tiles = (x + 0.5) * c.acrossX + (y + 0.5) * c.acrossY;
                const double part = tiles - std::floor(tiles);
                const double reach = std::abs(c.acrossX) + std::abs(c.acrossY);
                const double toEdge =
                    std::min({part, std::abs(part - 0.5), 1 - part}); // of a stripe
                const uint32_t pixel = picture.at(x, y) & kColour;
                // Between the two there is nothing lighter than the ground.
                ASSERT_LE(pixel >> 16, 0xCCu) << c.transform << " at " << x << ", " << y;
                ASSERT_EQ(pixel & 0xFF, 0xFFu) << c.transform << " at " << x << ", " << y;
                if (toEdge > reach) {
                    ASSERT_EQ(pixel, part < 0.5 ? 0x0000FFu : 0xCCCCFFu)
                        << c.transform << " at " << x << ", " << y;
                }
            }
    }
}

TEST(SvgPatterns, WithoutATileOrContentTheFallbackPaints)
{
    for (const char* pattern :
         {"<pattern id='p' width='0' height='1'><path d='M0 0h9v9'/></pattern>",
          "<pattern id='p' width='1' height='1'/>", "<pattern id='p' href='#none'/>"})
        for (const char* fallback : {"lime", "none", ""}) {
            const KAVO::Svg::Picture picture =
                drawn("<svg width='20' height='20'>" + std::string(pattern) +
                          "<rect width='20' height='20' fill='url(#p) " + fallback + "'/></svg>",
                      20, 20);
            EXPECT_EQ(picture.at(10, 10) & kColour,
                      std::string(fallback) == "lime" ? 0x00FF00u : 0xFFFFFFu)
                << pattern << fallback;
        }
}

} // namespace
