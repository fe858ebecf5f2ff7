// SPDX-License-Identifier: MIT
// Gradients and images over the whole target, beside Cairo.
#include "Scene.h"

#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/convenience/MMGradient.h"
#include "graphics2d/convenience/MMPathBuilder.h"
#include "svg/geometry/PathEncoder.h"

#ifdef MM2D_BENCH_CAIRO
#include <cairo.h>
#endif

#include <memory>

using namespace KAVO;

using KAVO::Svg::toFixed;

namespace {

using namespace KAVO::Graphics2D;

constexpr int kImageSize = 256;
constexpr double kHalf = kSceneSize / 2.0;

uint32_t texel(uint32_t x, uint32_t y, uint32_t alpha, bool premultiplied)
{
    const uint32_t share = premultiplied ? alpha : 255;
    const auto channel = [share](uint32_t v) { return (v * share + 127) / 255; };
    return alpha << 24 | channel(x * 255 / kImageSize) << 16 | channel(y * 255 / kImageSize) << 8 |
           channel((x ^ y) & 255);
}

// Opaque, or with an alpha that grows toward the lower right.
std::vector<uint32_t> image(bool hasAlpha, bool premultiplied)
{
    std::vector<uint32_t> texels;
    for (uint32_t y = 0; y < kImageSize; ++y)
        for (uint32_t x = 0; x < kImageSize; ++x)
            texels.push_back(texel(x, y, hasAlpha ? (x + y) / 2 : 255, premultiplied));
    return texels;
}

struct PaintScene {
    enum Kind { kLinear, kRadial, kImage } kind;
    const char* name;
    uint8_t opacity;
    MMPatternFilter filter;
    double scale;
    double degrees;
    double size; // of the square that is painted, from the target's corner
    bool hasAlpha = false;
};

// A target and the square filled with one paint.
struct OursPaint {
    std::vector<Pixel> pixels = std::vector<Pixel>(kSceneSize * kSceneSize, 0xFFFFFFFF);
    std::vector<Pixel> texels;
    MMGradient<3> gradient{{{0, 0xFFC03020}, {0.5_fx, 0xFFF0E040}, {1_fx, 0xFF2060C0}}};
    MMContext2D context;
    MMPathBuilder path;

    OursPaint(const PaintScene& scene, bool refined) : texels(image(scene.hasAlpha, false))
    {
        setTarget(context, pixels.data(), kSceneSize, kSceneSize);
        context.refined = refined;
        context.patternFilter = scene.filter;
        setPaint(scene);
        context.fillPaint.paintOpacity = scene.opacity;
        const Fixed end = toFixed(scene.size);
        path.rect(0, 0, end, end);
    }

    void setPaint(const PaintScene& scene)
    {
        const Fixed half = toFixed(kHalf);
        MMPaint& paint = context.fillPaint;
        if (scene.kind == PaintScene::kLinear)
            gradient.setLinear(context, paint, {0, 0}, {2 * half, half});
        if (scene.kind == PaintScene::kRadial)
            gradient.setRadial(context, paint, {half, half}, half);
        if (scene.kind != PaintScene::kImage) return;
        Matrix2D transform = kIdentityMatrix;
        if (scene.scale != 1) transform.scale(toFixed(scene.scale), toFixed(scene.scale));
        transform.rotate(toFixed(scene.degrees));
        const MMPixmap pixmap = {kImageSize, kImageSize,    kImageSize * 4,
                                 0,          texels.data(), scene.hasAlpha};
        setPattern(paint, pixmap, transform, scene.filter, context.refined != 0);
    }
};

#ifdef MM2D_BENCH_CAIRO
struct CairoPaint {
    std::vector<uint32_t> texels;
    cairo_surface_t* source;
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSceneSize, kSceneSize);
    cairo_t* cairo = cairo_create(surface);
    cairo_pattern_t* pattern;
    double opacity;
    double size;
    bool isImage;

    explicit CairoPaint(const PaintScene& scene)
        : texels(image(scene.hasAlpha, true)),
          source(cairo_image_surface_create_for_data(
              reinterpret_cast<unsigned char*>(texels.data()),
              scene.hasAlpha ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24, kImageSize, kImageSize,
              kImageSize * 4)),
          opacity(scene.opacity / 255.0), size(scene.size),
          isImage(scene.kind == PaintScene::kImage)
    {
        if (scene.kind == PaintScene::kImage) {
            pattern = cairo_pattern_create_for_surface(source);
            cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
            constexpr cairo_filter_t kFilters[] = {CAIRO_FILTER_NEAREST, CAIRO_FILTER_BILINEAR,
                                                   CAIRO_FILTER_BEST};
            cairo_pattern_set_filter(pattern, kFilters[scene.filter]);
            cairo_matrix_t matrix;
            cairo_matrix_init_scale(&matrix, 1 / scene.scale, 1 / scene.scale);
            cairo_matrix_rotate(&matrix, -scene.degrees * 3.14159265358979323846 / 180);
            cairo_pattern_set_matrix(pattern, &matrix);
            return;
        }
        pattern = scene.kind == PaintScene::kLinear
                      ? cairo_pattern_create_linear(0, 0, kSceneSize, kHalf)
                      : cairo_pattern_create_radial(kHalf, kHalf, 0, kHalf, kHalf, kHalf);
        // An opacity below 1 goes into the stops: painting through a mask would be slower.
        cairo_pattern_add_color_stop_rgba(pattern, 0, 0.75, 0.19, 0.13, opacity);
        cairo_pattern_add_color_stop_rgba(pattern, 0.5, 0.94, 0.88, 0.25, opacity);
        cairo_pattern_add_color_stop_rgba(pattern, 1, 0.13, 0.38, 0.75, opacity);
    }

    ~CairoPaint()
    {
        cairo_pattern_destroy(pattern);
        cairo_destroy(cairo);
        cairo_surface_destroy(surface);
        cairo_surface_destroy(source);
    }

    void draw()
    {
        cairo_set_source(cairo, pattern);
        cairo_rectangle(cairo, 0, 0, size, size);
        if (isImage && opacity < 1) {
            cairo_save(cairo);
            cairo_clip(cairo);
            cairo_paint_with_alpha(cairo, opacity);
            cairo_restore(cairo);
        } else {
            cairo_fill(cairo);
        }
        cairo_surface_flush(surface);
    }
};
#endif

Scene paintScene(const PaintScene& description)
{
    Scene scene;
    scene.name = description.name;
    for (const bool refined : {false, true}) {
        auto ours = std::make_shared<OursPaint>(description, refined);
        (refined ? scene.refined : scene.classic) = [ours] {
            ours->context.drawPath(ours->path.words());
        };
    }
#ifdef MM2D_BENCH_CAIRO
    auto cairo = std::make_shared<CairoPaint>(description);
    scene.cairo = [cairo] { cairo->draw(); };
#endif
    return scene;
}

} // namespace

std::vector<Scene> paintScenes()
{
    constexpr PaintScene kScenes[] = {
        {PaintScene::kLinear, "linear gradient opaque", 255, kFilterNearest, 1, 0, kSceneSize},
        {PaintScene::kLinear, "linear gradient translucent", 128, kFilterNearest, 1, 0, kSceneSize},
        {PaintScene::kRadial, "radial gradient opaque", 255, kFilterNearest, 1, 0, kSceneSize},
        {PaintScene::kRadial, "radial gradient translucent", 128, kFilterNearest, 1, 0, kSceneSize},
        {PaintScene::kImage, "image 1:1 nearest", 255, kFilterNearest, 1, 0, kImageSize},
        {PaintScene::kImage, "image 1:1 with alpha", 255, kFilterNearest, 1, 0, kImageSize, true},
        {PaintScene::kImage, "image 1:1 translucent", 128, kFilterNearest, 1, 0, kImageSize},
        {PaintScene::kImage, "image 3.9x nearest", 255, kFilterNearest, 3.9, 0, kSceneSize},
        {PaintScene::kImage, "image 3.9x bilinear", 255, kFilterBilinear, 3.9, 0, kSceneSize},
        {PaintScene::kImage, "image 3.9x bicubic", 255, kFilterBicubic, 3.9, 0, kSceneSize},
        {PaintScene::kImage, "image 3.9x bilinear translucent", 128, kFilterBilinear, 3.9, 0,
         kSceneSize},
        {PaintScene::kImage, "image rotated nearest", 255, kFilterNearest, 3.9, 10, kSceneSize},
        {PaintScene::kImage, "image rotated bilinear", 255, kFilterBilinear, 3.9, 10, kSceneSize},
        {PaintScene::kImage, "image rotated bicubic", 255, kFilterBicubic, 3.9, 10, kSceneSize},
    };
    std::vector<Scene> scenes;
    for (const PaintScene& scene : kScenes)
        scenes.push_back(paintScene(scene));
    return scenes;
}
