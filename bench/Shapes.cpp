// SPDX-License-Identifier: MIT
// Shapes from SVG files.
#include "Scene.h"

#include "svg/values/PathParser.h"

#include <pugixml.hpp>

using KAVO::Svg::parsePath;

namespace {

void collectPaths(const pugi::xml_node& node, std::vector<Outline>& outlines, Box& box)
{
    for (const pugi::xml_node& child : node.children()) {
        Outline outline;
        if (std::string(child.name()) == "path") {
            parsePath(child.attribute("d").value(), outline);
            if (!outline.empty()) {
                box.include(outline.bounds());
                outlines.push_back(outline);
            }
        }
        collectPaths(child, outlines, box);
    }
}

Outline scaled(const Outline& outline, const Affine& map)
{
    Outline result;
    for (const Outline::Segment& segment : outline.segments()) {
        const Point* p = segment.points;
        switch (segment.verb) {
        case Outline::Move:
            result.moveTo(map.map(p[0]));
            break;
        case Outline::Line:
            result.lineTo(map.map(p[0]));
            break;
        case Outline::Curve:
            result.curveTo(map.map(p[0]), map.map(p[1]), map.map(p[2]));
            break;
        case Outline::Close:
            result.close();
            break;
        }
    }
    return result;
}

} // namespace

bool haveCurves(const std::vector<Shape>& shapes)
{
    for (const Shape& shape : shapes)
        for (const Outline::Segment& segment : shape.outline.segments())
            if (segment.verb == Outline::Curve) return true;
    return false;
}

std::vector<Outline> drawingOutlines(const std::string& file)
{
    pugi::xml_document document;
    if (!document.load_file(file.c_str())) return {};
    std::vector<Outline> outlines;
    Box box;
    collectPaths(document, outlines, box);
    if (box.empty()) return {};
    const double scale = kSceneSize / std::max(box.width(), box.height());
    const Affine map = {scale, 0, 0, scale, -box.left * scale, -box.top * scale};
    for (Outline& outline : outlines)
        outline = scaled(outline, map);
    return outlines;
}
