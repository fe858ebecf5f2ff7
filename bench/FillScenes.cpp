// SPDX-License-Identifier: MIT
// Filled shapes, from one large rectangle to hundreds of small blobs.
#include "Scene.h"

#include <cwchar>
#include <memory>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;

void addRectangle(Outline& outline, Point corner, double width, double height)
{
    outline.moveTo(corner);
    outline.lineTo({corner.x + width, corner.y});
    outline.lineTo({corner.x + width, corner.y + height});
    outline.lineTo({corner.x, corner.y + height});
    outline.close();
}

Outline rectangle(double left, double top, double width, double height)
{
    Outline outline;
    addRectangle(outline, {left, top}, width, height);
    return outline;
}

// Every stride-th of count points on a circle, joined by lines.
void addCirclePolygon(Outline& outline, Point centre, double radius, int count, int stride = 1)
{
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * kPi * i * stride / count;
        const Point p = centre + Point{std::cos(angle), std::sin(angle)} * radius;
        i == 0 ? outline.moveTo(p) : outline.lineTo(p);
    }
    outline.close();
}

Outline circlePolygon(Point centre, double radius, int count, int stride = 1)
{
    Outline outline;
    addCirclePolygon(outline, centre, radius, count, stride);
    return outline;
}

class Places {
public:
    double within(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(engine_);
    }
    Point point(double margin)
    {
        return {within(margin, kSceneSize - margin), within(margin, kSceneSize - margin)};
    }

private:
    std::mt19937 engine_{1};
};

// A closed curve of eight cubics around a centre, its radius varying.
Outline blob(Places& places, Point centre, double radius)
{
    constexpr int kCubics = 8;
    const double reach = 4.0 / 3 * std::tan(kPi / 2 / kCubics / 2 * 2); // about a circle's
    Outline outline;
    Point start;
    double startAngle = 0;
    double startRadius = radius;
    outline.moveTo(start = centre + Point{radius, 0});
    for (int i = 1; i <= kCubics; ++i) {
        const double angle = 2 * kPi * i / kCubics;
        const double r = i == kCubics ? radius : radius * places.within(0.7, 1.3);
        const Point end = centre + Point{std::cos(angle), std::sin(angle)} * r;
        const Point out =
            Point{-std::sin(startAngle), std::cos(startAngle)} * (startRadius * reach);
        const Point in = Point{-std::sin(angle), std::cos(angle)} * (r * reach);
        outline.curveTo(start + out, end - in, end);
        start = end;
        startAngle = angle;
        startRadius = r;
    }
    outline.close();
    return outline;
}

template <class MakeOutline>
std::vector<Shape> many(int count, MakeOutline make)
{
    std::vector<Shape> shapes;
    for (int i = 0; i < count; ++i) {
        Shape shape;
        shape.outline = make();
        shape.colour = 0xFF000000 | static_cast<uint32_t>(i) * 2654435761u >> 8;
        shapes.push_back(shape);
    }
    return shapes;
}

// What the memory can do: every pixel of the target set.
Draw fillTarget(uint32_t colour)
{
    static_assert(sizeof(wchar_t) == sizeof(uint32_t), "a pixel is a wide character");
    auto pixels = std::make_shared<std::vector<wchar_t>>(kSceneSize * kSceneSize);
    return [pixels, colour] {
        std::wmemset(pixels->data(), static_cast<wchar_t>(colour), pixels->size());
    };
}

} // namespace

std::vector<Scene> fillScenes()
{
    Places places;
    std::vector<Scene> scenes;
    Shape whole;
    whole.outline = rectangle(0, 0, kSceneSize, kSceneSize);
    scenes.push_back(sceneOf("rectangle 1000 opaque", std::vector<Shape>{whole}));
    scenes.back().memory = fillTarget(whole.colour);
    whole.colour = 0x803060C0;
    scenes.push_back(sceneOf("rectangle 1000 translucent", std::vector<Shape>{whole}));
    scenes.push_back(sceneOf("500 rectangles of 16", many(500, [&] {
                                 const Point p = places.point(16);
                                 return rectangle(std::floor(p.x), std::floor(p.y), 16, 16);
                             })));
    scenes.push_back(sceneOf("20 circles of radius 100",
                             many(20, [&] { return circlePolygon(places.point(100), 100, 64); })));
    scenes.push_back(sceneOf("500 circles of radius 10",
                             many(500, [&] { return circlePolygon(places.point(10), 10, 24); })));
    Shape star;
    star.outline = circlePolygon({500, 500}, 450, 101, 50);
    scenes.push_back(sceneOf("star of 101 points", std::vector<Shape>{star}));
    Shape tangle;
    tangle.outline.moveTo(places.point(0));
    for (int i = 1; i < 1000; ++i)
        tangle.outline.lineTo(places.point(0));
    tangle.outline.close();
    scenes.push_back(sceneOf("1,000 random vertices", std::vector<Shape>{tangle}));
    scenes.push_back(sceneOf("200 blobs of 8 cubics",
                             many(200, [&] { return blob(places, places.point(30), 20); })));
    Shape subpaths;
    for (int i = 0; i < 3000; ++i)
        addRectangle(subpaths.outline, places.point(2), 3, 3);
    scenes.push_back(sceneOf("3,000 squares in one path", std::vector<Shape>{subpaths}));
    subpaths.outline = Outline();
    for (int i = 0; i < 1000; ++i)
        addCirclePolygon(subpaths.outline, places.point(10), 10, 24);
    scenes.push_back(sceneOf("1,000 discs in one path", std::vector<Shape>{subpaths}));
    std::vector<Shape> drawing;
    for (const Outline& outline : drawingOutlines(MM2D_BENCH_DRAWING)) {
        Shape shape;
        shape.outline = outline;
        shape.colour = 0xFF000000 | static_cast<uint32_t>(drawing.size()) * 2654435761u >> 8;
        drawing.push_back(shape);
    }
    if (!drawing.empty()) scenes.push_back(sceneOf("a real drawing, filled", drawing));
    return scenes;
}
