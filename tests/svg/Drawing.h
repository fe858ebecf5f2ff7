// SPDX-License-Identifier: MIT
// A document drawn into a picture in memory, for tests.
#pragma once

#include "svg/MMSvgDocument.h"
#include "svg/images/Picture.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

constexpr uint32_t kWhite = 0xFFFFFFFF;

// Draws the elements inside an svg element of the picture's size.
inline KAVO::Svg::Picture drawn(KAVO::Svg::MMSvgDocument& document, int width, int height,
                                uint32_t ground = kWhite)
{
    KAVO::Svg::Picture picture(width, height, ground);
    const auto w = static_cast<uint16_t>(width);
    const auto h = static_cast<uint16_t>(height);
    const double side = 0;
    EXPECT_TRUE(document.render({w, h, w * 4u, 0, picture.pixels.data(), 0},
                                {side, side, double(width), double(height)}));
    return picture;
}

inline KAVO::Svg::Picture drawn(const std::string& svg, int width, int height,
                                uint32_t ground = kWhite)
{
    KAVO::Svg::MMSvgDocument document;
    EXPECT_TRUE(document.loadBytes(svg)) << document.problem() << " in " << svg;
    return drawn(document, width, height, ground);
}

// Of colours, in levels.
inline int worstDifference(const KAVO::Svg::Picture& a, const KAVO::Svg::Picture& b)
{
    int worst = 0;
    for (size_t i = 0; i < a.pixels.size(); ++i)
        for (int shift = 0; shift < 24; shift += 8)
            worst = std::max(worst, std::abs(static_cast<int>(a.pixels[i] >> shift & 255) -
                                             static_cast<int>(b.pixels[i] >> shift & 255)));
    return worst;
}

inline bool lacks(const KAVO::Svg::MMSvgDocument& document, const std::string& what)
{
    for (const KAVO::Svg::Shortcoming& s : document.shortcomings())
        if (s.what == what) return true;
    return false;
}
