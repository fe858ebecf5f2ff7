// SPDX-License-Identifier: MIT
// Characters that are drawn in one go.
#pragma once

#include "svg/render/Renderer.h"

#include <vector>

namespace KAVO {
namespace Svg {

// One style, no jump or turn inside. They lie along the x axis of a space of their own, from its
// origin on.
struct Renderer::TextRun {
    std::vector<uint16_t> text;
    const Style* style = nullptr;
    Point start;     // user space
    double turn = 0; // degrees
    double width = 0;
    double stretch = 1; // of the x axis, along which the width is measured before

    Affine toUser() const
    {
        return translation(start.x, start.y) * rotation(turn) * Affine{stretch, 0, 0, 1, 0, 0};
    }
};

} // namespace Svg
} // namespace KAVO
