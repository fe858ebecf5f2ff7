// SPDX-License-Identifier: MIT
// The shapes of a scene through Cairo's image backend.
#include "CairoTarget.h"

#include <memory>

namespace {

struct Drawing : CairoTarget {
    std::vector<Shape> shapes;
    std::vector<cairo_path_t*> paths;

    explicit Drawing(double deviation) { cairo_set_tolerance(cairo, deviation); }
    ~Drawing()
    {
        for (cairo_path_t* path : paths)
            cairo_path_destroy(path);
    }

    void add(const Shape& shape)
    {
        cairo_new_path(cairo);
        for (const Outline::Segment& segment : shape.outline.segments()) {
            const Point* p = segment.points;
            switch (segment.verb) {
            case Outline::Move:
                cairo_move_to(cairo, p[0].x, p[0].y);
                break;
            case Outline::Line:
                cairo_line_to(cairo, p[0].x, p[0].y);
                break;
            case Outline::Curve:
                cairo_curve_to(cairo, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
                break;
            case Outline::Close:
                cairo_close_path(cairo);
                break;
            }
        }
        shapes.push_back(shape);
        paths.push_back(cairo_copy_path(cairo));
    }

    void draw(const Shape& shape, const cairo_path_t* path)
    {
        cairo_new_path(cairo);
        cairo_append_path(cairo, path);
        const uint32_t c = shape.colour;
        cairo_set_source_rgba(cairo, (c >> 16 & 255) / 255.0, (c >> 8 & 255) / 255.0,
                              (c & 255) / 255.0, (c >> 24) / 255.0);
        if (shape.strokeWidth == 0) {
            cairo_fill(cairo);
            return;
        }
        cairo_set_line_width(cairo, shape.strokeWidth);
        cairo_set_line_join(cairo, shape.roundJoinsAndCaps ? CAIRO_LINE_JOIN_ROUND
                                                           : CAIRO_LINE_JOIN_MITER);
        cairo_set_line_cap(cairo,
                           shape.roundJoinsAndCaps ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
        cairo_set_dash(cairo, shape.dashes.data(), static_cast<int>(shape.dashes.size()), 0);
        cairo_stroke(cairo);
    }
};

} // namespace

Draw drawWithCairo(const std::vector<Shape>& shapes, double deviation)
{
    auto drawing = std::make_shared<Drawing>(deviation);
    for (const Shape& shape : shapes)
        drawing->add(shape);
    return [drawing] {
        for (size_t i = 0; i < drawing->shapes.size(); ++i)
            drawing->draw(drawing->shapes[i], drawing->paths[i]);
        cairo_surface_flush(drawing->surface);
    };
}
