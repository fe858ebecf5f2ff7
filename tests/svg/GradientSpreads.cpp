// SPDX-License-Identifier: MIT
// Gradients that repeat, reflect or have a focal point, against their definition.
#include "../graphics2d/sources/GradientModel.h"
#include "Drawing.h"

#include <algorithm>
#include <functional>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

constexpr int kWidth = 200, kHeight = 160;

using Parameter = std::function<std::optional<double>(model::Point)>;

struct Case {
    const char* element; // without its spread, in a drawing of 100 by 80 units
    Parameter parameter; // in units
};

Parameter circles(double fx, double fy, double fr, double cx, double cy, double r)
{
    return [=](model::Point p) { return model::radialParameter(p, {fx, fy}, fr, {cx, cy}, r); };
}

// Pixels of a rectangle over the whole drawing, but those where the colour jumps.
void compare(const Case& c, const std::string& name, MMSpread spread)
{
    const std::string element = c.element;
    const Svg::Picture picture =
        drawn("<svg width='200' height='160' viewBox='0 0 100 80'>" +
                  element.substr(0, element.find(' ')) + " id='g' spreadMethod='" + name + "'" +
                  element.substr(element.find(' ')) +
                  "<stop stop-color='#102030'/><stop offset='.4' stop-color='#f04080'/>"
                  "<stop offset='1' stop-color='#20e0c0'/>" +
                  (element.find("linear") == 1 ? "</linearGradient>" : "</radialGradient>") +
                  "<rect width='100' height='80' fill='url(#g)'/></svg>",
              kWidth, kHeight);
    constexpr Pixel kColours[] = {0xFF102030, 0xFFF04080, 0xFF20E0C0};
    constexpr Fixed kOffsets[] = {0, 26214, kFixedOne};
    const GradientStops stops = {kColours, kOffsets, 3};
    int compared = 0;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const auto at = [&](double dx, double dy) {
                return c.parameter({(x + 0.5 + dx) / 2, (y + 0.5 + dy) / 2});
            };
            const std::optional<double> t = at(0, 0);
            bool jumps = false;
            for (const auto& near : {at(1, 0), at(-1, 0), at(0, 1), at(0, -1)})
                jumps |= near.has_value() != t.has_value() ||
                         (t && spread != kSpreadPad &&
                          (std::floor(*near) != std::floor(*t) || std::abs(*near - *t) > 0.2));
            if (jumps) continue;
            const model::Colour colour = t ? model::rampColour(stops, model::spread(*t, spread))
                                           : model::Colour{255, 255, 255, 255};
            for (int k = 0; k < 3; ++k)
                ASSERT_NEAR(picture.at(x, y) >> (8 * k) & 255, colour[static_cast<size_t>(k)], 3)
                    << element << " " << name << " at " << x << ", " << y << " t "
                    << t.value_or(-1);
            ++compared;
        }
    EXPECT_GT(compared, kWidth * kHeight / 4) << element << " " << name;
}

} // namespace

TEST(GradientSpreads, FollowTheirDefinition)
{
    const Case cases[] = {
        {"<linearGradient gradientUnits='userSpaceOnUse' x1='20' y1='10' x2='60' y2='30'>",
         [](model::Point p) {
             return model::linearParameter(p, {20, 10}, {60, 30});
         }},
        {"<linearGradient x1='.4' x2='.6'>",
         [](model::Point p) {
             return model::linearParameter(p, {40, 0}, {60, 0});
         }},
        {"<linearGradient gradientUnits='userSpaceOnUse' x1='-90000' x2='90000'>",
         [](model::Point p) {
             return model::linearParameter(p, {-90000, 0}, {90000, 0});
         }},
        {"<radialGradient gradientUnits='userSpaceOnUse' cx='50' cy='40' r='20'>",
         circles(50, 40, 0, 50, 40, 20)},
        {"<radialGradient gradientUnits='userSpaceOnUse' cx='50' cy='40' r='30' fx='35' fy='30'>",
         circles(35, 30, 0, 50, 40, 30)},
        {"<radialGradient gradientUnits='userSpaceOnUse' cx='50' cy='40' r='30' fx='35' fr='5'>",
         circles(35, 40, 5, 50, 40, 30)},
        {"<radialGradient gradientUnits='userSpaceOnUse' cx='50' cy='40' r='30' fx='20'>",
         circles(20, 40, 0, 50, 40, 30)}, // on the edge
        {"<radialGradient gradientUnits='userSpaceOnUse' cx='50' cy='40' r='31' fx='35' "
         "fy='12.8707216158'>",
         circles(35, 12.8707216157, 0, 50, 40, 31)}, // there but for rounding
        {"<radialGradient gradientUnits='userSpaceOnUse' cx='60' cy='40' r='15' fx='20'>",
         circles(20, 40, 0, 60, 40, 15)},
        {"<radialGradient gradientUnits='userSpaceOnUse' cx='50' cy='40' r='40' fr='20'>",
         circles(50, 40, 20, 50, 40, 40)},
    };
    for (const Case& c : cases) {
        compare(c, "pad", kSpreadPad);
        compare(c, "repeat", kSpreadRepeat);
        compare(c, "reflect", kSpreadReflect);
    }
}
