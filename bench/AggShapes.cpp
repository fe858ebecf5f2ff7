// SPDX-License-Identifier: MIT
// The shapes of a scene through AGG.
#include "AggTarget.h"

#include <agg_conv_curve.h>
#include <agg_conv_dash.h>
#include <agg_conv_stroke.h>
#include <agg_path_storage.h>

#include <memory>

namespace {

struct Drawing : AggTarget {
    agg::renderer_scanline_aa_solid<Base> renderer{base};
    std::vector<Shape> shapes;
    std::vector<agg::path_storage> paths;
    const double deviation;

    explicit Drawing(double curveDeviation) : deviation(curveDeviation) {}

    void add(const Shape& shape)
    {
        agg::path_storage path;
        for (const Outline::Segment& segment : shape.outline.segments()) {
            const Point* p = segment.points;
            switch (segment.verb) {
            case Outline::Move:
                path.move_to(p[0].x, p[0].y);
                break;
            case Outline::Line:
                path.line_to(p[0].x, p[0].y);
                break;
            case Outline::Curve:
                path.curve4(p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
                break;
            case Outline::Close:
                path.close_polygon();
                break;
            }
        }
        shapes.push_back(shape);
        paths.push_back(path);
    }

    template <class Source>
    void stroke(Source& source, const Shape& shape)
    {
        agg::conv_stroke<Source> stroke(source);
        stroke.width(shape.strokeWidth);
        stroke.line_join(shape.roundJoinsAndCaps ? agg::round_join : agg::miter_join);
        stroke.line_cap(shape.roundJoinsAndCaps ? agg::round_cap : agg::butt_cap);
        rasterizer.add_path(stroke);
    }

    void draw(const Shape& shape, agg::path_storage& path)
    {
        using Curves = agg::conv_curve<agg::path_storage>;
        Curves curves(path);
        // A scale of 1 lets arcs of up to 450 pixels deviate by 0.12.
        curves.approximation_scale(0.125 / deviation);
        rasterizer.reset();
        if (shape.strokeWidth == 0) {
            rasterizer.add_path(curves);
        } else if (shape.dashes.empty()) {
            stroke(curves, shape);
        } else {
            agg::conv_dash<Curves> dashes(curves);
            for (size_t i = 0; i + 1 < shape.dashes.size(); i += 2)
                dashes.add_dash(shape.dashes[i], shape.dashes[i + 1]);
            stroke(dashes, shape);
        }
        renderer.color(aggColour(shape.colour));
        agg::render_scanlines(rasterizer, scanline, renderer);
    }
};

} // namespace

Draw drawWithAgg(const std::vector<Shape>& shapes, double deviation)
{
    auto drawing = std::make_shared<Drawing>(deviation);
    for (const Shape& shape : shapes)
        drawing->add(shape);
    return [drawing] {
        for (size_t i = 0; i < drawing->shapes.size(); ++i)
            drawing->draw(drawing->shapes[i], drawing->paths[i]);
    };
}
