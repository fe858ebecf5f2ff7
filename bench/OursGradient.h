// SPDX-License-Identifier: MIT
// The gradients' stops for this library.
#pragma once

#include "Paints.h"

#include "graphics2d/convenience/MMGradient.h"
#include "svg/geometry/PathEncoder.h"

inline KAVO::Graphics2D::MMGradient<3> oursGradient()
{
    const auto stop = [](const Stop& s) {
        return KAVO::Graphics2D::MMGradientStop{KAVO::Svg::toFixed(s.offset),
                                                0xFF000000 | s.colour};
    };
    return {{stop(kStops[0]), stop(kStops[1]), stop(kStops[2])}};
}
