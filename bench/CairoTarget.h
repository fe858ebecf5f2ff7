// SPDX-License-Identifier: MIT
// What every scene through Cairo draws on.
#pragma once

#include "Scene.h"

#include <cairo.h>

struct CairoTarget {
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSceneSize, kSceneSize);
    cairo_t* cairo = cairo_create(surface);

    CairoTarget()
    {
        cairo_set_tolerance(cairo, kCurveDeviation);
        cairo_set_source_rgb(cairo, 1, 1, 1);
        cairo_paint(cairo);
    }
    CairoTarget(const CairoTarget&) = delete;
    ~CairoTarget()
    {
        cairo_destroy(cairo);
        cairo_surface_destroy(surface);
    }
};
