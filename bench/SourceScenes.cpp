// SPDX-License-Identifier: MIT
// Gradient and tile sources over the whole target, beside Cairo.
#include "Scene.h"

#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/convenience/MMPathBuilder.h"
#include "graphics2d/sources/MMGradientSource.h"
#include "graphics2d/sources/MMTileSource.h"
#include "svg/geometry/PathEncoder.h"

#ifdef MM2D_BENCH_CAIRO
#include <cairo.h>
#endif

#include <memory>

using namespace KAVO;

using KAVO::Svg::toFixed;

namespace {

using namespace KAVO::Graphics2D;

constexpr uint32_t kTileSize = 100;

struct Circle {
    double x, y, radius;
};

struct SourceScene {
    enum Kind { kLinear, kRadial, kConic, kTiles } kind;
    const char* name;
    MMSpread spread;
    Circle start; // of a linear gradient its start and end
    Circle end;
    MMPatternFilter filter = kFilterNearest;
    double scale = 1;
    double degrees = 0;
};

std::vector<uint32_t> tile()
{
    std::vector<uint32_t> texels;
    for (uint32_t y = 0; y < kTileSize; ++y)
        for (uint32_t x = 0; x < kTileSize; ++x)
            texels.push_back(0xFF000000 | (2 * x) << 16 | (2 * y) << 8 | (x ^ y));
    return texels;
}

// A target and a square over it.
struct OursSource {
    std::vector<Pixel> pixels = std::vector<Pixel>(kSceneSize * kSceneSize, 0xFFFFFFFF);
    std::vector<Pixel> texels = tile();
    MMGradientSource gradient;
    MMTileSource tiles;
    MMContext2D context;
    MMPathBuilder path;

    OursSource(const SourceScene& scene, bool refined)
    {
        setTarget(context, pixels.data(), kSceneSize, kSceneSize);
        context.refined = refined;
        setPaint(scene);
        const Fixed end = toFixed(kSceneSize);
        path.rect(0, 0, end, end);
    }

    void setPaint(const SourceScene& scene)
    {
        constexpr Pixel kColours[] = {0xFFC03020, 0xFFF0E040, 0xFF2060C0};
        constexpr Fixed kOffsets[] = {0, kFixedHalf, kFixedOne};
        const GradientStops stops = {kColours, kOffsets, 3};
        const MMPoint2D start = {toFixed(scene.start.x), toFixed(scene.start.y)};
        const MMPoint2D end = {toFixed(scene.end.x), toFixed(scene.end.y)};
        MMPaint& paint = context.fillPaint;
        Matrix2D transform = kIdentityMatrix;
        switch (scene.kind) {
        case SourceScene::kLinear:
            return setLinearSource(paint, gradient, start, end, transform, stops, scene.spread);
        case SourceScene::kRadial:
            return setRadialSource(paint, gradient, {start, toFixed(scene.start.radius)},
                                   {end, toFixed(scene.end.radius)}, transform, stops,
                                   scene.spread);
        case SourceScene::kConic:
            return setConicSource(paint, gradient, start, 0, kDegrees360, transform, stops,
                                  scene.spread);
        case SourceScene::kTiles:
            break;
        }
        if (scene.scale != 1) transform.scale(toFixed(scene.scale), toFixed(scene.scale));
        transform.rotate(toFixed(scene.degrees));
        const MMTileMode mode = scene.spread == kSpreadReflect ? kTileMirror : kTileRepeat;
        setTileSource(paint, tiles, {kTileSize, kTileSize, kTileSize * 4, 0, texels.data(), 0},
                      transform, scene.filter, mode, mode);
    }
};

#ifdef MM2D_BENCH_CAIRO
struct CairoSource {
    std::vector<uint32_t> texels = tile();
    cairo_surface_t* image = cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(texels.data()), CAIRO_FORMAT_RGB24, kTileSize, kTileSize,
        kTileSize * 4);
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSceneSize, kSceneSize);
    cairo_t* cairo = cairo_create(surface);
    cairo_pattern_t* pattern;

    explicit CairoSource(const SourceScene& scene) : pattern(patternOf(scene))
    {
        constexpr cairo_extend_t kExtends[] = {CAIRO_EXTEND_PAD, CAIRO_EXTEND_REPEAT,
                                               CAIRO_EXTEND_REFLECT};
        cairo_pattern_set_extend(pattern, kExtends[scene.spread]);
        if (scene.kind == SourceScene::kTiles) return;
        cairo_pattern_add_color_stop_rgb(pattern, 0, 0.75, 0.19, 0.13);
        cairo_pattern_add_color_stop_rgb(pattern, 0.5, 0.94, 0.88, 0.25);
        cairo_pattern_add_color_stop_rgb(pattern, 1, 0.13, 0.38, 0.75);
    }

    cairo_pattern_t* patternOf(const SourceScene& scene) const
    {
        const Circle &from = scene.start, &to = scene.end;
        if (scene.kind == SourceScene::kLinear)
            return cairo_pattern_create_linear(from.x, from.y, to.x, to.y);
        if (scene.kind == SourceScene::kRadial)
            return cairo_pattern_create_radial(from.x, from.y, from.radius, to.x, to.y, to.radius);
        cairo_pattern_t* const tiles = cairo_pattern_create_for_surface(image);
        constexpr cairo_filter_t kFilters[] = {CAIRO_FILTER_NEAREST, CAIRO_FILTER_BILINEAR,
                                               CAIRO_FILTER_BEST};
        cairo_pattern_set_filter(tiles, kFilters[scene.filter]);
        cairo_matrix_t matrix;
        cairo_matrix_init_scale(&matrix, 1 / scene.scale, 1 / scene.scale);
        cairo_matrix_rotate(&matrix, -scene.degrees * 3.14159265358979323846 / 180);
        cairo_pattern_set_matrix(tiles, &matrix);
        return tiles;
    }

    ~CairoSource()
    {
        cairo_pattern_destroy(pattern);
        cairo_destroy(cairo);
        cairo_surface_destroy(surface);
        cairo_surface_destroy(image);
    }

    void draw()
    {
        cairo_set_source(cairo, pattern);
        cairo_rectangle(cairo, 0, 0, kSceneSize, kSceneSize);
        cairo_fill(cairo);
        cairo_surface_flush(surface);
    }
};
#endif

Scene sourceScene(const SourceScene& description)
{
    Scene scene;
    scene.name = description.name;
    for (const bool refined : {false, true}) {
        auto ours = std::make_shared<OursSource>(description, refined);
        (refined ? scene.refined : scene.classic) = [ours] {
            ours->context.drawPath(ours->path.words());
        };
    }
#ifdef MM2D_BENCH_CAIRO
    if (description.kind != SourceScene::kConic) { // which Cairo does not have
        auto cairo = std::make_shared<CairoSource>(description);
        scene.cairo = [cairo] { cairo->draw(); };
    }
#endif
    return scene;
}

} // namespace

std::vector<Scene> sourceScenes()
{
    constexpr Circle kNone = {0, 0, 0};
    constexpr SourceScene kScenes[] = {
        {SourceScene::kLinear, "source linear padded", kSpreadPad, {250, 0, 0}, {700, 300, 0}},
        {SourceScene::kLinear, "source linear repeated", kSpreadRepeat, {0, 0, 0}, {90, 40, 0}},
        {SourceScene::kLinear, "source linear reflected", kSpreadReflect, {0, 0, 0}, {90, 40, 0}},
        {SourceScene::kRadial, "source focal padded", kSpreadPad, {400, 350, 0}, {500, 500, 450}},
        {SourceScene::kRadial,
         "source focal repeated",
         kSpreadRepeat,
         {480, 490, 0},
         {500, 500, 60}},
        {SourceScene::kRadial, "source cone", kSpreadPad, {200, 500, 60}, {700, 500, 200}},
        {SourceScene::kConic, "source conic", kSpreadPad, {500, 500, 0}, kNone},
        {SourceScene::kTiles, "tiles 1:1 nearest", kSpreadRepeat, kNone, kNone},
        {SourceScene::kTiles, "tiles 2.3x nearest", kSpreadRepeat, kNone, kNone, kFilterNearest,
         2.3},
        {SourceScene::kTiles, "tiles mirrored nearest", kSpreadReflect, kNone, kNone,
         kFilterNearest, 2.3},
        {SourceScene::kTiles, "tiles 2.3x bilinear", kSpreadRepeat, kNone, kNone, kFilterBilinear,
         2.3},
        {SourceScene::kTiles, "tiles 2.3x bicubic", kSpreadRepeat, kNone, kNone, kFilterBicubic,
         2.3},
        {SourceScene::kTiles, "tiles rotated nearest", kSpreadRepeat, kNone, kNone, kFilterNearest,
         2.3, 10},
        {SourceScene::kTiles, "tiles rotated bilinear", kSpreadRepeat, kNone, kNone,
         kFilterBilinear, 2.3, 10},
        {SourceScene::kTiles, "tiles mirrored bilinear", kSpreadReflect, kNone, kNone,
         kFilterBilinear, 2.3, 10},
    };
    std::vector<Scene> scenes;
    for (const SourceScene& scene : kScenes)
        scenes.push_back(sourceScene(scene));
    return scenes;
}
