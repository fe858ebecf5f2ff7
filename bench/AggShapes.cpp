// SPDX-License-Identifier: MIT
// The shapes of a scene through AGG.
#include "Scene.h"

#include <agg_conv_curve.h>
#include <agg_conv_dash.h>
#include <agg_conv_stroke.h>
#include <agg_path_storage.h>
#include <agg_pixfmt_rgba.h>
#include <agg_rasterizer_scanline_aa.h>
#include <agg_renderer_scanline.h>
#include <agg_scanline_u.h>

#include <memory>

namespace {

using PixelFormat = agg::pixfmt_bgra32;
using Base = agg::renderer_base<PixelFormat>;

struct Drawing {
    std::vector<uint32_t> pixels = std::vector<uint32_t>(kSceneSize * kSceneSize, 0xFFFFFFFF);
    agg::rendering_buffer buffer{reinterpret_cast<agg::int8u*>(pixels.data()), kSceneSize,
                                 kSceneSize, kSceneSize * 4};
    PixelFormat format{buffer};
    Base base{format};
    agg::renderer_scanline_aa_solid<Base> renderer{base};
    agg::rasterizer_scanline_aa<> rasterizer;
    agg::scanline_u8 scanline;
    std::vector<Shape> shapes;
    std::vector<agg::path_storage> paths;

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
        const uint32_t c = shape.colour;
        renderer.color(agg::rgba8(c >> 16 & 255, c >> 8 & 255, c & 255, c >> 24));
        agg::render_scanlines(rasterizer, scanline, renderer);
    }
};

} // namespace

Draw drawWithAgg(const std::vector<Shape>& shapes)
{
    auto drawing = std::make_shared<Drawing>();
    for (const Shape& shape : shapes)
        drawing->add(shape);
    return [drawing] {
        for (size_t i = 0; i < drawing->shapes.size(); ++i)
            drawing->draw(drawing->shapes[i], drawing->paths[i]);
    };
}
