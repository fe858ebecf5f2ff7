// SPDX-License-Identifier: MIT
// Lines: a wide polyline, hairlines, dashes and a drawing's outlines.
#include "Scene.h"

#include <random>

std::vector<Scene> strokeScenes()
{
    std::mt19937 engine(2);
    std::uniform_real_distribution<double> place(0, kSceneSize);
    std::uniform_real_distribution<double> step(-15, 15);
    std::vector<Scene> scenes;

    Shape polyline;
    polyline.strokeWidth = 5;
    polyline.roundJoinsAndCaps = true;
    polyline.outline.moveTo({place(engine), place(engine)});
    for (int i = 0; i < 100; ++i)
        polyline.outline.lineTo({place(engine), place(engine)});
    scenes.push_back(sceneOf("polyline of 100 segments", std::vector<Shape>{polyline}));

    Shape hairline;
    hairline.strokeWidth = 1;
    hairline.outline.moveTo({place(engine), place(engine)});
    for (int i = 0; i < 1000; ++i)
        hairline.outline.lineTo({place(engine), place(engine)});
    scenes.push_back(sceneOf("polyline of 1,000 segments", std::vector<Shape>{hairline}));

    std::vector<Shape> hairlines(1000);
    for (Shape& line : hairlines) {
        const Point from = {place(engine), place(engine)};
        line.strokeWidth = 1;
        line.outline.moveTo(from);
        line.outline.lineTo(from + Point{step(engine), step(engine)});
    }
    scenes.push_back(sceneOf("1,000 short hairlines", hairlines));

    Shape dashed;
    dashed.strokeWidth = 3;
    dashed.dashes = {12, 7};
    dashed.outline.moveTo({950, 500});
    dashed.outline.arcTo(450, 450, 0, true, true, {50, 500});
    dashed.outline.arcTo(450, 450, 0, true, true, {950, 500});
    dashed.outline.close();
    scenes.push_back(sceneOf("dashed circle", std::vector<Shape>{dashed}));

    std::vector<Shape> drawing;
    for (const Outline& outline : drawingOutlines(MM2D_BENCH_DRAWING)) {
        Shape shape;
        shape.outline = outline;
        shape.strokeWidth = 2;
        drawing.push_back(shape);
    }
    if (!drawing.empty()) scenes.push_back(sceneOf("a real drawing, stroked", drawing));
    return scenes;
}
