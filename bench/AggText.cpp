// SPDX-License-Identifier: MIT
// Text through AGG and FreeType: cached coverage, at whole pixels.
#include "AggGradient.h"
#include "AggTarget.h"
#include "Text.h"

#include <agg_font_cache_manager.h>
#include <agg_font_freetype.h>
#include <agg_span_allocator.h>

#include <memory>

namespace {

struct Drawing : AggTarget {
    TextLines text;
    std::vector<std::string> lines;
    agg::font_engine_freetype_int32 engine;
    agg::font_cache_manager<agg::font_engine_freetype_int32> fonts{engine};
    agg::renderer_scanline_aa_solid<Base> solid{base};
    agg::trans_affine toPaint = alongAxis({kSceneSize, kSceneSize});
    agg::span_interpolator_linear<> interpolator{toPaint};
    agg::span_allocator<agg::rgba8> allocator;
    agg::gradient_x axis;
    AggRamp ramp;
    AggGradient<agg::gradient_x> gradient{interpolator, axis, ramp, 0,
                                          std::hypot(kSceneSize, kSceneSize)};

    explicit Drawing(const TextLines& description) : text(description), lines(text.lines())
    {
        engine.load_font(MM2D_BENCH_FONT, 0, agg::glyph_ren_agg_gray8);
        engine.hinting(false);
        engine.flip_y(true);
        engine.height(text.size);
        solid.color(aggColour(0xFF000000));
        fillRamp(ramp, 255);
    }

    void drawGlyph()
    {
        auto& rows = fonts.gray8_adaptor();
        if (text.gradient)
            agg::render_scanlines_aa(rows, fonts.gray8_scanline(), base, allocator, gradient);
        else
            agg::render_scanlines(rows, fonts.gray8_scanline(), solid);
    }

    void drawLine(const std::string& line, double y)
    {
        double x = kMargin;
        for (const char letter : line) {
            const agg::glyph_cache* glyph = fonts.glyph(static_cast<unsigned char>(letter));
            if (glyph == nullptr) continue;
            fonts.init_embedded_adaptors(glyph, x, y);
            drawGlyph();
            x += glyph->advance_x;
        }
    }

    void draw()
    {
        for (size_t i = 0; i < lines.size(); ++i)
            drawLine(lines[i], text.baseline(i));
    }
};

} // namespace

// Its sizes are whole 1/64 pixels, so the uncached ones would be cached.
Draw drawWithAgg(const TextLines& text)
{
    if (!text.cached) return {};
    auto drawing = std::make_shared<Drawing>(text);
    return [drawing] { drawing->draw(); };
}
