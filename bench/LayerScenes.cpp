// SPDX-License-Identifier: MIT
// Masks, layers and blend modes over the whole target, beside Cairo's masks and groups.
#include "Scene.h"

#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/convenience/MMGradient.h"
#include "graphics2d/convenience/MMPathBuilder.h"
#include "graphics2d/layers/MMLayer.h"

#ifdef MM2D_BENCH_CAIRO
#include <cairo.h>
#endif

#include <memory>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

constexpr int16_t kSide = kSceneSize;
constexpr int kSmallShapes = 20;
constexpr int kLargeRadius = 480;
constexpr int kSmallRadius = 100;

enum class LayerScene {
    kPlain,         // nothing but the fill: what the others are compared with
    kCircleClip,    // the mask of a circle drawn, then a fill through it
    kSmallClip,     // the same of a small circle, in a mask of the target's size
    kSmallPart,     // the same by the part of the mask that it touches
    kGreyMask,      // a fill through levels of 128
    kGreyGradient,  // a gradient through them
    kEmptyLayer,    // opened and closed
    kSmallLayer,    // twenty discs in a layer of the target's size
    kWholeLayer,    // a fill in a layer of opacity 0.5
    kMultiplyLayer, // the same in a blend mode
};

// A target, and what is drawn on it.
struct Ours {
    std::vector<Pixel> pixels = std::vector<Pixel>(kSceneSize * kSceneSize, 0xFFFFFFFF);
    std::vector<uint8_t> levels = std::vector<uint8_t>(kSceneSize * kSceneSize);
    MMMask mask = makeMask(levels.data(), 0, 0, kSide, kSide);
    MMGradient<2> gradient{{{0, 0xFFC03020}, {1_fx, 0xFF2060C0}}};
    MMContext2D context;
    LayerScene scene;

    Ours(LayerScene which, bool refined) : scene(which)
    {
        setTarget(context, pixels.data(), kSceneSize, kSceneSize);
        context.refined = refined;
        context.antiAlias = 1;
        context.fillPaint.paintColour = 0xFF3060C0;
        if (scene == LayerScene::kGreyMask || scene == LayerScene::kGreyGradient) {
            fillMask(mask, 128);
            context.clipMask = &mask;
        }
        if (scene == LayerScene::kGreyGradient)
            gradient.setLinear(context, context.fillPaint, {0, 0}, {fixFromInt(kSide), 0});
    }

    void fill()
    {
        context.drawPath(MMPathBuilder().rect(0, 0, fixFromInt(kSide), fixFromInt(kSide)).words());
    }

    void discs()
    {
        for (int32_t i = 0; i < kSmallShapes; ++i)
            context.drawPath(
                MMPathBuilder().circle(fixFromInt(100 + 40 * i), 500_fx, 15_fx).words());
    }

    void drawCircle(int radius)
    {
        context.maskTarget = &mask;
        context.drawPath(MMPathBuilder().circle(500_fx, 500_fx, fixFromInt(radius)).words());
        context.maskTarget = nullptr;
    }

    void fillThrough(const MMMask& clip)
    {
        context.clipMask = &clip;
        fill();
        context.clipMask = nullptr;
    }

    void circleClip(int radius)
    {
        fillMask(mask, 0);
        drawCircle(radius);
        fillThrough(mask);
    }

    // In a mask that is clear.
    void circlePart(int radius)
    {
        drawCircle(radius);
        const MMMask part = drawnPart(mask, context);
        fillThrough(part);
        fillMask(part, 0);
    }

    void draw()
    {
        MMLayerOptions options;
        switch (scene) {
        case LayerScene::kCircleClip:
            return circleClip(kLargeRadius);
        case LayerScene::kSmallClip:
            return circleClip(kSmallRadius);
        case LayerScene::kSmallPart:
            return circlePart(kSmallRadius);
        case LayerScene::kEmptyLayer: {
            const MMLayer layer(context);
            return;
        }
        case LayerScene::kSmallLayer: {
            const MMLayer layer(context);
            return discs();
        }
        case LayerScene::kMultiplyLayer:
            options.blendMode = kBlendMultiply;
            [[fallthrough]];
        case LayerScene::kWholeLayer: {
            options.opacity = 128;
            const MMLayer layer(context, options);
            return fill();
        }
        default:
            return fill();
        }
    }
};

#ifdef MM2D_BENCH_CAIRO
struct Peer {
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSceneSize, kSceneSize);
    cairo_surface_t* grey = cairo_image_surface_create(CAIRO_FORMAT_A8, kSceneSize, kSceneSize);
    cairo_pattern_t* gradient = cairo_pattern_create_linear(0, 0, kSceneSize, 0);
    cairo_t* cairo = cairo_create(surface);
    LayerScene scene;

    explicit Peer(LayerScene which) : scene(which)
    {
        cairo_set_source_rgb(cairo, 1, 1, 1);
        cairo_paint(cairo);
        cairo_t* levels = cairo_create(grey);
        cairo_set_source_rgba(levels, 0, 0, 0, 128 / 255.0);
        cairo_paint(levels);
        cairo_destroy(levels);
        cairo_pattern_add_color_stop_rgb(gradient, 0, 0.75, 0.19, 0.13);
        cairo_pattern_add_color_stop_rgb(gradient, 1, 0.13, 0.38, 0.75);
    }
    ~Peer()
    {
        cairo_destroy(cairo);
        cairo_pattern_destroy(gradient);
        cairo_surface_destroy(grey);
        cairo_surface_destroy(surface);
    }

    void colour() { cairo_set_source_rgb(cairo, 0.19, 0.38, 0.75); }

    void discs()
    {
        colour();
        for (int i = 0; i < kSmallShapes; ++i) {
            cairo_arc(cairo, 100 + 40 * i, 500, 15, 0, 6.2831853);
            cairo_fill(cairo);
        }
    }

    void circleClip(int radius)
    {
        cairo_save(cairo);
        cairo_arc(cairo, 500, 500, radius, 0, 6.2831853);
        cairo_clip(cairo);
        cairo_paint(cairo);
        cairo_restore(cairo);
    }

    void draw()
    {
        colour();
        switch (scene) {
        case LayerScene::kPlain:
            cairo_paint(cairo);
            break;
        case LayerScene::kCircleClip:
            circleClip(kLargeRadius);
            break;
        case LayerScene::kSmallClip:
        case LayerScene::kSmallPart:
            circleClip(kSmallRadius);
            break;
        case LayerScene::kGreyGradient:
            cairo_set_source(cairo, gradient);
            [[fallthrough]];
        case LayerScene::kGreyMask:
            cairo_mask_surface(cairo, grey, 0, 0);
            break;
        case LayerScene::kEmptyLayer:
        case LayerScene::kSmallLayer:
            cairo_push_group(cairo);
            if (scene == LayerScene::kSmallLayer) discs();
            cairo_pop_group_to_source(cairo);
            cairo_paint(cairo);
            break;
        case LayerScene::kWholeLayer:
        case LayerScene::kMultiplyLayer:
            cairo_push_group(cairo);
            colour();
            cairo_paint(cairo);
            cairo_pop_group_to_source(cairo);
            if (scene == LayerScene::kMultiplyLayer)
                cairo_set_operator(cairo, CAIRO_OPERATOR_MULTIPLY);
            cairo_paint_with_alpha(cairo, 0.5);
            cairo_set_operator(cairo, CAIRO_OPERATOR_OVER);
            break;
        }
        cairo_surface_flush(surface);
    }
};
#endif

template <class Drawing, class... Arguments>
Draw drawWith(Arguments... arguments)
{
    auto drawing = std::make_shared<Drawing>(arguments...);
    return [drawing] { drawing->draw(); };
}

} // namespace

std::vector<Scene> layerScenes()
{
    static const struct {
        const char* name;
        LayerScene scene;
    } kScenes[] = {{"fill 1000 x 1000", LayerScene::kPlain},
                   {"circle as a mask, fill through it", LayerScene::kCircleClip},
                   {"small circle as a mask, fill through it", LayerScene::kSmallClip},
                   {"small circle, fill through its part", LayerScene::kSmallPart},
                   {"fill through a grey mask", LayerScene::kGreyMask},
                   {"gradient through a grey mask", LayerScene::kGreyGradient},
                   {"empty layer", LayerScene::kEmptyLayer},
                   {"20 discs in a layer", LayerScene::kSmallLayer},
                   {"fill in a layer of opacity 0.5", LayerScene::kWholeLayer},
                   {"fill in a layer, multiplied", LayerScene::kMultiplyLayer}};
    std::vector<Scene> scenes;
    for (const auto& s : kScenes) {
        Scene scene;
        scene.name = s.name;
        scene.classic = drawWith<Ours>(s.scene, false);
        scene.refined = drawWith<Ours>(s.scene, true);
#ifdef MM2D_BENCH_CAIRO
        scene.cairo = drawWith<Peer>(s.scene);
#endif
        scenes.push_back(std::move(scene));
    }
    return scenes;
}
