// SPDX-License-Identifier: MIT
// The gradients of the paints as AGG's spans of colours.
#pragma once

#include "AggTarget.h"
#include "Paints.h"

#include <agg_gradient_lut.h>
#include <agg_span_gradient.h>
#include <agg_span_interpolator_linear.h>

using AggRamp = agg::gradient_lut<agg::color_interpolator<agg::rgba8>>;
// Shape is agg::gradient_x or agg::gradient_radial.
template <class Shape>
using AggGradient = agg::span_gradient<agg::rgba8, agg::span_interpolator_linear<>, Shape, AggRamp>;

inline void fillRamp(AggRamp& ramp, uint8_t opacity)
{
    for (const Stop& stop : kStops)
        ramp.add_color(stop.offset, aggColour(stop.colour | static_cast<uint32_t>(opacity) << 24));
    ramp.build_lut();
}

// From device pixels to the gradient's axis x, which begins at 0.
inline agg::trans_affine alongAxis(Point end)
{
    return agg::trans_affine_rotation(-std::atan2(end.y, end.x));
}
