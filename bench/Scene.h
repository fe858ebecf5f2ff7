// SPDX-License-Identifier: MIT
// A scene and the renderers it is measured in.
//
// Every scene draws the same picture through this library, by the classic and by the refined rules,
// and, where they are built in, through Cairo's image backend, AGG and Qt's raster engine. Paths
// are encoded for each renderer beforehand: what is measured is drawing.
#pragma once

#include "svg/geometry/Outline.h"

#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

constexpr int kSceneSize = 1000; // pixels a side of every target

// How far, in pixels, the peers' chords may lie from the curves: in general, and beside the refined
// mode, which keeps to this. Qt cannot be told.
constexpr double kCurveDeviation = 0.125;
constexpr double kRefinedDeviation = 1.0 / 32;

using KAVO::Svg::Affine;
using KAVO::Svg::Box;
using KAVO::Svg::Outline;
using KAVO::Svg::Point;

using Draw = std::function<void()>;

struct Scene {
    std::string name;
    Draw classic;
    Draw refined;
    Draw cairo; // empty where there is no such peer
    Draw agg;
    Draw qt;
    Draw memory;    // as many words written or copied by the C library
    Draw fineCairo; // with kRefinedDeviation; empty where there are no curves
    Draw fineAgg;
};

// A drawing that is measured at growing sizes.
struct Growth {
    std::string name;
    std::vector<uint32_t> sizes;
    std::function<Draw(uint32_t size)> make;
};

// One shape of a scene and how it is painted.
struct Shape {
    Outline outline;
    uint32_t colour = 0xFF3060C0; // 0xAARRGGBB, alpha is the opacity
    double strokeWidth = 0;       // 0: filled, non-zero winding
    bool roundJoinsAndCaps = false;
    std::vector<double> dashes;
};

Draw drawWithOurs(const std::vector<Shape>& shapes, bool refined);
Draw drawWithCairo(const std::vector<Shape>& shapes, double deviation = kCurveDeviation);
Draw drawWithAgg(const std::vector<Shape>& shapes, double deviation = kCurveDeviation);
Draw drawWithQt(const std::vector<Shape>& shapes);

bool haveCurves(const std::vector<Shape>& shapes);

// The scene of some content in every renderer that there is: Shapes, drawn one after the other with
// anti-aliasing, a PaintedSquare or TextLines. Each renderer has a file for each.
template <class Content>
Scene sceneOf(std::string name, const Content& content)
{
    Scene scene;
    scene.name = std::move(name);
    scene.classic = drawWithOurs(content, false);
    scene.refined = drawWithOurs(content, true);
#ifdef MM2D_BENCH_CAIRO
    scene.cairo = drawWithCairo(content);
#endif
#ifdef MM2D_BENCH_AGG
    scene.agg = drawWithAgg(content);
#endif
#ifdef MM2D_BENCH_QT
    scene.qt = drawWithQt(content);
#endif
    if constexpr (std::is_same_v<Content, std::vector<Shape>>)
        if (haveCurves(content)) {
#ifdef MM2D_BENCH_CAIRO
            scene.fineCairo = drawWithCairo(content, kRefinedDeviation);
#endif
#ifdef MM2D_BENCH_AGG
            scene.fineAgg = drawWithAgg(content, kRefinedDeviation);
#endif
        }
    return scene;
}

std::vector<Scene> fillScenes();
std::vector<Scene> strokeScenes();
std::vector<Scene> paintScenes();
std::vector<Scene> sourceScenes();
std::vector<Scene> textScenes();
std::vector<Scene> layerScenes();
std::vector<Growth> growthSeries();

// The scenes of text that are compared with each other.
constexpr char kCachedTextScene[] = "text 12 px cached solid";
constexpr char kWrapScene[] = "wrap 2,000 characters";

// The outlines of all path elements of an SVG file, scaled together to fill the target; empty when
// the file cannot be read.
std::vector<Outline> drawingOutlines(const std::string& file);
