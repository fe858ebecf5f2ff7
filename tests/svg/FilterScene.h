// SPDX-License-Identifier: MIT
// A scene to be filtered, and its pictures held to those of a model.
#pragma once

#include "tests/svg/Drawing.h"
#include "tests/svg/FilterModel.h"

#include <functional>

namespace KAVO::Svg {

using FilterModel::Colour;
using FilterModel::Image;

constexpr int kFilterSide = 40;

// Whole pixels of several colours and opacities, some of them dark, on a transparent ground.
inline const std::string kScene =
    "<rect x='6' y='5' width='14' height='20' fill='#c84010'/>"
    "<rect x='14' y='12' width='17' height='15' fill='#2060e0' fill-opacity='.6'/>"
    "<rect x='9' y='20' width='8' height='13' fill='#101408' fill-opacity='.85'/>";

inline std::string document(const std::string& content)
{
    return "<svg width='40' height='40'>" + content + "</svg>";
}

inline std::string filtered(const std::string& primitives, const std::string& content = kScene,
                            const std::string& attributes = "")
{
    return document("<filter id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' "
                    "height='40' " +
                    attributes + ">" + primitives + "</filter><g filter='url(#f)'>" + content +
                    "</g>");
}

inline void expectNear(const std::string& svg, const Image& expected, int tolerance = 2)
{
    const Picture picture = drawn(svg, kFilterSide, kFilterSide, 0);
    for (int y = 0; y < kFilterSide; ++y)
        for (int x = 0; x < kFilterSide; ++x)
            for (size_t c = 0; c < 4; ++c) {
                const int channel = picture.at(x, y) >> (c == 3 ? 24 : 16 - 8 * c) & 255;
                ASSERT_NEAR(channel, expected.at(x, y)[c] * 255, tolerance + 0.01)
                    << "pixel " << x << ' ' << y << ", channel " << c << " of " << svg;
            }
}

inline Image scene()
{
    return Image(drawn(document(kScene), kFilterSide, kFilterSide, 0));
}

using Model = std::function<Image(const Image&)>;

// In sRGB and in linear light, which is what is meant when nothing is said.
inline void expectModel(const std::string& primitives, const Model& model)
{
    const Image source = scene();
    expectNear(filtered(primitives, kScene, "color-interpolation-filters='sRGB'"), model(source));
    expectNear(filtered(primitives),
               FilterModel::converted(model(FilterModel::converted(source, true)), false));
}

} // namespace KAVO::Svg
