// SPDX-License-Identifier: MIT
// Gradients and images through Cairo's image backend.
#include "CairoStops.h"
#include "CairoTarget.h"
#include "Paints.h"

#include <memory>

namespace {

struct Drawing : CairoTarget {
    PaintedSquare square;
    std::vector<uint32_t> texels;
    cairo_surface_t* source;
    cairo_pattern_t* pattern;

    explicit Drawing(const PaintedSquare& description)
        : square(description), texels(paintImage(square.hasAlpha, true)),
          source(cairo_image_surface_create_for_data(
              reinterpret_cast<unsigned char*>(texels.data()),
              square.hasAlpha ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24, kImageSize, kImageSize,
              kImageSize * 4)),
          pattern(square.kind == PaintedSquare::Image ? imagePattern() : gradientPattern())
    {
    }
    ~Drawing()
    {
        cairo_pattern_destroy(pattern);
        cairo_surface_destroy(source);
    }

    cairo_pattern_t* imagePattern() const
    {
        cairo_pattern_t* image = cairo_pattern_create_for_surface(source);
        cairo_pattern_set_extend(image, CAIRO_EXTEND_PAD);
        constexpr cairo_filter_t kFilters[] = {CAIRO_FILTER_NEAREST, CAIRO_FILTER_BILINEAR,
                                               CAIRO_FILTER_BEST};
        cairo_pattern_set_filter(image, kFilters[static_cast<int>(square.filter)]);
        cairo_matrix_t matrix;
        cairo_matrix_init_scale(&matrix, 1 / square.scale, 1 / square.scale);
        cairo_matrix_rotate(&matrix, -square.degrees * 3.14159265358979323846 / 180);
        cairo_pattern_set_matrix(image, &matrix);
        return image;
    }

    cairo_pattern_t* gradientPattern() const
    {
        cairo_pattern_t* gradient =
            square.kind == PaintedSquare::Linear
                ? cairo_pattern_create_linear(0, 0, kLinearEnd.x, kLinearEnd.y)
                : cairo_pattern_create_radial(kMiddle, kMiddle, 0, kMiddle, kMiddle, kMiddle);
        // An opacity below 1 goes into the stops: painting through a mask would be slower.
        addCairoStops(gradient, square.opacity);
        return gradient;
    }

    void draw()
    {
        cairo_set_source(cairo, pattern);
        cairo_rectangle(cairo, 0, 0, square.size, square.size);
        if (square.kind == PaintedSquare::Image && square.opacity < 255) {
            cairo_save(cairo);
            cairo_clip(cairo);
            cairo_paint_with_alpha(cairo, square.opacity / 255.0);
            cairo_restore(cairo);
        } else {
            cairo_fill(cairo);
        }
        cairo_surface_flush(surface);
    }
};

} // namespace

Draw drawWithCairo(const PaintedSquare& square)
{
    auto drawing = std::make_shared<Drawing>(square);
    return [drawing] { drawing->draw(); };
}
