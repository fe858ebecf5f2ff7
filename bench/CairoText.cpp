// SPDX-License-Identifier: MIT
// Text as Cairo's image backend draws it.
#include "CairoStops.h"
#include "CairoTarget.h"
#include "Paints.h"
#include "Text.h"

#include <cairo-ft.h>

#include <memory>

namespace {

struct Drawing : CairoTarget {
    FT_Library library = nullptr;
    FT_Face file = nullptr;
    TextLines text;
    std::vector<cairo_glyph_t> glyphs;
    Sizes sizes;

    // Cairo keeps fonts of its own accord beyond this, so FreeType and its file stay.
    explicit Drawing(const TextLines& description) : text(description), sizes(text)
    {
        FT_Init_FreeType(&library);
        FT_New_Face(library, MM2D_BENCH_FONT, 0, &file);
        cairo_font_face_t* face = cairo_ft_font_face_create_for_ft_face(file, 0);
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        cairo_set_font_face(cairo, face);
        cairo_set_font_options(cairo, options);
        cairo_set_font_size(cairo, text.size);
        cairo_font_options_destroy(options);
        cairo_font_face_destroy(face);
        const std::vector<std::string> lines = text.lines();
        for (size_t i = 0; i < lines.size(); ++i)
            addLine(lines[i], text.baseline(i));
        setSource();
    }

    void addLine(const std::string& line, double y)
    {
        cairo_glyph_t* added = nullptr;
        int count = 0;
        cairo_scaled_font_text_to_glyphs(cairo_get_scaled_font(cairo), kMargin, y, line.data(),
                                         static_cast<int>(line.size()), &added, &count, nullptr,
                                         nullptr, nullptr);
        glyphs.insert(glyphs.end(), added, added + count);
        cairo_glyph_free(added);
    }

    void setSource()
    {
        if (!text.gradient) return cairo_set_source_rgb(cairo, 0, 0, 0);
        cairo_pattern_t* pattern = cairo_pattern_create_linear(0, 0, kSceneSize, kSceneSize);
        addCairoStops(pattern, 255);
        cairo_set_source(cairo, pattern);
        cairo_pattern_destroy(pattern);
    }

    void draw()
    {
        cairo_set_font_size(cairo, sizes.next());
        cairo_show_glyphs(cairo, glyphs.data(), static_cast<int>(glyphs.size()));
        cairo_surface_flush(surface);
    }
};

} // namespace

Draw drawWithCairo(const TextLines& text)
{
    auto drawing = std::make_shared<Drawing>(text);
    return [drawing] { drawing->draw(); };
}
