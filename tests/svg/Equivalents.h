// SPDX-License-Identifier: MIT
// Pairs of drawings that look the same: a feature beside what it stands for.
#pragma once

#include "tests/svg/Drawing.h"

#include <initializer_list>
#include <string>

struct Pair {
    std::string feature;
    std::string plain;
};

inline void expectSame(const Pair& pair)
{
    constexpr int kSide = 40;
    const KAVO::Svg::Picture feature = drawn(pair.feature, kSide, kSide);
    const KAVO::Svg::Picture plain = drawn(pair.plain, kSide, kSide);
    EXPECT_TRUE(feature.pixels == plain.pixels) << pair.feature << "\nis not\n" << pair.plain;
}

// Inside a drawing of 40 by 40; an empty one must stay white.
inline void expectSameElements(std::initializer_list<Pair> pairs)
{
    for (const Pair& pair : pairs)
        expectSame({"<svg width='40' height='40'>" + pair.feature + "</svg>",
                    "<svg width='40' height='40'>" + pair.plain + "</svg>"});
}
