// SPDX-License-Identifier: MIT
// The gradients' stops for Cairo.
#pragma once

#include "Paints.h"

#include <cairo.h>

inline void addCairoStops(cairo_pattern_t* gradient, uint8_t opacity)
{
    for (const Stop& stop : kStops)
        cairo_pattern_add_color_stop_rgba(gradient, stop.offset, (stop.colour >> 16) / 255.0,
                                          (stop.colour >> 8 & 255) / 255.0,
                                          (stop.colour & 255) / 255.0, opacity / 255.0);
}
