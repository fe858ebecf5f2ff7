// SPDX-License-Identifier: MIT
// Text, beside Cairo with the same font: cached and uncached glyphs, and a paragraph to wrap.
#include "Scene.h"

#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/convenience/MMGradient.h"
#include "svg/geometry/PathEncoder.h"

#ifdef MM2D_BENCH_CAIRO
#include <cairo-ft.h>
#include <cairo.h>
#endif

#include <malloc.h>
#include <memory>

using namespace KAVO;

using KAVO::Svg::toFixed;

namespace {

using namespace KAVO::Graphics2D;

constexpr double kMargin = 10;

// An uncached glyph is one of a size that was not drawn lately: every picture has the next of so
// many sizes, each 1/65536 greater than the last, that no cache holds them all.
constexpr uint32_t kUncachedSizes = 4096;

struct TextScene {
    const char* name;
    size_t lineCount;
    size_t lineLength;
    double size; // pixels
    bool gradient;
    bool cached;
};

// Lines of letters without blanks, different ones as long as there are any.
std::vector<std::string> linesOf(const TextScene& scene)
{
    const std::string letters = "TheQuickBrownFxJmpsvLazydgABCDEGHIKMNOPRSUVWXYZbfjqtlu";
    std::vector<std::string> lines(scene.lineCount);
    size_t next = 0;
    for (std::string& line : lines)
        while (line.size() < scene.lineLength)
            line += letters[next++ % letters.size()];
    return lines;
}

double baselineOf(const TextScene& scene, size_t line)
{
    return kMargin + scene.size * 1.25 * static_cast<double>(line + 1);
}

std::vector<uint16_t> utf16(const std::string& text)
{
    std::vector<uint16_t> units(text.begin(), text.end());
    units.push_back(0);
    return units;
}

// How much a size differs from the scene's, in 1/65536 pixel.
class Sizes {
public:
    explicit Sizes(bool cached) : cached_(cached) {}
    uint32_t next() { return cached_ ? 0 : ++drawn_ % kUncachedSizes; }

private:
    bool cached_;
    uint32_t drawn_ = 0;
};

struct OursText {
    std::vector<Pixel> pixels = std::vector<Pixel>(kSceneSize * kSceneSize, 0xFFFFFFFF);
    MMGradient<3> gradient{{{0, 0xFFC03020}, {0.5_fx, 0xFFF0E040}, {1_fx, 0xFF2060C0}}};
    MMContext2D context;
    TextScene scene;
    std::vector<std::vector<uint16_t>> lines;
    Sizes sizes;

    OursText(const TextScene& description, bool refined)
        : scene(description), sizes(description.cached)
    {
        setTarget(context, pixels.data(), kSceneSize, kSceneSize);
        context.refined = refined;
        if (scene.gradient)
            gradient.setLinear(context, context.fillPaint, {0, 0},
                               {toFixed(kSceneSize), toFixed(kSceneSize)});
        for (const std::string& line : linesOf(scene))
            lines.push_back(utf16(line));
    }

    void draw()
    {
        context.fontSize = toFixed(scene.size) + static_cast<Fixed>(sizes.next());
        for (size_t i = 0; i < lines.size(); ++i)
            context.drawText(lines[i].data(), toFixed(kMargin), toFixed(baselineOf(scene, i)));
    }
};

#ifdef MM2D_BENCH_CAIRO
// Text as Cairo's image backend draws it, unhinted as ours.
struct CairoText {
    FT_Library library = nullptr;
    FT_Face file = nullptr;
    cairo_font_face_t* face;
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSceneSize, kSceneSize);
    cairo_t* cairo = cairo_create(surface);
    TextScene scene;
    std::vector<cairo_glyph_t> glyphs;
    Sizes sizes;

    explicit CairoText(const TextScene& description) : scene(description), sizes(description.cached)
    {
        FT_Init_FreeType(&library);
        FT_New_Face(library, MM2D_BENCH_FONT, 0, &file);
        face = cairo_ft_font_face_create_for_ft_face(file, 0);
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        cairo_set_font_face(cairo, face);
        cairo_set_font_options(cairo, options);
        cairo_set_font_size(cairo, scene.size);
        const std::vector<std::string> lines = linesOf(scene);
        for (size_t i = 0; i < lines.size(); ++i)
            addLine(lines[i], baselineOf(scene, i));
        setSource();
    }

    // Cairo keeps fonts of its own accord beyond this, so FreeType and its file stay.
    ~CairoText()
    {
        cairo_destroy(cairo);
        cairo_surface_destroy(surface);
        cairo_font_options_destroy(options);
        cairo_font_face_destroy(face);
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
        if (!scene.gradient) return;
        cairo_pattern_t* pattern = cairo_pattern_create_linear(0, 0, kSceneSize, kSceneSize);
        cairo_pattern_add_color_stop_rgb(pattern, 0, 0.75, 0.19, 0.13);
        cairo_pattern_add_color_stop_rgb(pattern, 0.5, 0.94, 0.88, 0.25);
        cairo_pattern_add_color_stop_rgb(pattern, 1, 0.13, 0.38, 0.75);
        cairo_set_source(cairo, pattern);
        cairo_pattern_destroy(pattern);
    }

    void draw()
    {
        if (!scene.cached) cairo_set_font_size(cairo, scene.size + sizes.next() / 65536.0);
        cairo_show_glyphs(cairo, glyphs.data(), static_cast<int>(glyphs.size()));
        cairo_surface_flush(surface);
    }
};
#endif

Scene textScene(const TextScene& description)
{
    Scene scene;
    scene.name = description.name;
    for (const bool refined : {false, true}) {
        auto ours = std::make_shared<OursText>(description, refined);
        (refined ? scene.refined : scene.classic) = [ours] { ours->draw(); };
    }
#ifdef MM2D_BENCH_CAIRO
    auto cairo = std::make_shared<CairoText>(description);
    scene.cairo = [cairo] { cairo->draw(); };
#endif
    return scene;
}

// Breaking alone; Cairo has nothing like it.
Scene wrapScene()
{
    std::string paragraph;
    while (paragraph.size() < 2000)
        paragraph += "Words of several lengths, one after the other, make up this paragraph. ";
    paragraph.resize(2000);
    struct Wrapping {
        MMContext2D context;
        std::vector<uint16_t> text;
    };
    auto wrapping = std::make_shared<Wrapping>();
    wrapping->text = utf16(paragraph);
    Scene scene;
    scene.name = kWrapScene;
    scene.classic = [wrapping] {
        MMContext2D& context = wrapping->context;
        context.destroyTextLayout(context.createTextLayout(wrapping->text.data(), 300));
    };
    return scene;
}

} // namespace

std::vector<Scene> textScenes()
{
    constexpr TextScene kScenes[] = {
        {kCachedTextScene, 8, 125, 12, false, true},
        {"text 12 px cached gradient", 8, 125, 12, true, true},
        {"text 12 px uncached", 1, 52, 12, false, false},
        {"text 48 px uncached", 2, 26, 48, false, false},
    };
    std::vector<Scene> scenes;
    for (const TextScene& scene : kScenes)
        scenes.push_back(textScene(scene));
    scenes.push_back(wrapScene());
    return scenes;
}

ContextMemory contextMemory()
{
    const auto heapBytes = [] { return mallinfo2().uordblks; };
    const size_t before = heapBytes();
    auto context = std::make_unique<MMContext2D>();
    const size_t atRest = heapBytes() - before;
    std::vector<Pixel> pixels(kSceneSize * kSceneSize);
    setTarget(*context, pixels.data(), kSceneSize, kSceneSize);
    const size_t beforeText = heapBytes();
    std::vector<uint16_t> text = utf16(linesOf({"", 1, 52, 0, false, false}).front());
    for (Fixed size = 8; size < 48; ++size) {
        context->fontSize = size * kFixedOne;
        context->drawText(text.data(), 0, 100 * kFixedOne);
    }
    return {atRest, atRest + (heapBytes() - beforeText)};
}
