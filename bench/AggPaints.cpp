// SPDX-License-Identifier: MIT
// Gradients and images through AGG.
#include "AggGradient.h"
#include "AggTarget.h"
#include "Paints.h"

#include <agg_image_accessors.h>
#include <agg_span_allocator.h>
#include <agg_span_image_filter_rgba.h>

#include <memory>

namespace {

struct Drawing : AggTarget {
    PaintedSquare square;
    std::vector<uint32_t> texels;
    agg::rendering_buffer imageBuffer{reinterpret_cast<agg::int8u*>(texels.data()), kImageSize,
                                      kImageSize, kImageSize * 4};
    Format image{imageBuffer};
    agg::image_accessor_clone<Format> accessor{image};
    agg::image_filter_lut bicubic{agg::image_filter_bicubic()};
    agg::trans_affine toPaint; // from device pixels
    agg::span_interpolator_linear<> interpolator{toPaint};
    agg::span_allocator<agg::rgba8> allocator;
    AggRamp ramp;

    explicit Drawing(const PaintedSquare& description)
        : square(description), texels(paintImage(square.hasAlpha, false))
    {
        fillRamp(ramp, square.opacity);
        if (square.kind == PaintedSquare::Linear)
            toPaint = alongAxis(kLinearEnd);
        else if (square.kind == PaintedSquare::Radial)
            toPaint = agg::trans_affine_translation(-kMiddle, -kMiddle);
        else
            toPaint = agg::trans_affine_rotation(-square.degrees * agg::pi / 180) *
                      agg::trans_affine_scaling(1 / square.scale);
    }

    template <class Generator>
    void fill(Generator&& generator)
    {
        rasterizer.reset();
        rasterizer.move_to_d(0, 0);
        rasterizer.line_to_d(square.size, 0);
        rasterizer.line_to_d(square.size, square.size);
        rasterizer.line_to_d(0, square.size);
        agg::render_scanlines_aa(rasterizer, scanline, base, allocator, generator);
    }

    void drawImage()
    {
        if (square.isPlainCopy()) {
            if (square.hasAlpha || square.opacity < 255)
                base.blend_from(image, nullptr, 0, 0, square.opacity);
            else
                base.copy_from(imageBuffer);
            return;
        }
        using Accessor = agg::image_accessor_clone<Format>;
        using Interpolator = agg::span_interpolator_linear<>;
        switch (square.filter) {
        case Filter::Nearest:
            return fill(
                agg::span_image_filter_rgba_nn<Accessor, Interpolator>(accessor, interpolator));
        case Filter::Bilinear:
            return fill(agg::span_image_filter_rgba_bilinear<Accessor, Interpolator>(accessor,
                                                                                     interpolator));
        case Filter::Bicubic:
            return fill(agg::span_image_filter_rgba<Accessor, Interpolator>(accessor, interpolator,
                                                                            bicubic));
        }
    }

    void draw()
    {
        const auto gradient = [this](auto shape, double length) {
            return AggGradient<decltype(shape)>(interpolator, shape, ramp, 0, length);
        };
        if (square.kind == PaintedSquare::Linear)
            fill(gradient(agg::gradient_x(), std::hypot(kLinearEnd.x, kLinearEnd.y)));
        else if (square.kind == PaintedSquare::Radial)
            fill(gradient(agg::gradient_radial(), kMiddle));
        else
            drawImage();
    }
};

} // namespace

// Its filters know no opacity.
Draw drawWithAgg(const PaintedSquare& square)
{
    if (square.kind == PaintedSquare::Image && square.opacity < 255 && !square.isPlainCopy())
        return {};
    auto drawing = std::make_shared<Drawing>(square);
    return [drawing] { drawing->draw(); };
}
