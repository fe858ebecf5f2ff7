// SPDX-License-Identifier: MIT
#include "svg2png/Shapes.h"

#include "svg2png/PathParser.h"
#include "svg2png/Style.h"
#include "svg2png/TextScanner.h"

namespace {

// Reads the element's lengths; percentages refer to the viewport.
class Lengths {
public:
    Lengths(pugi::xml_node node, const ViewportSize& viewport, double fontSize)
        : node_(node), viewport_(viewport), fontSize_(fontSize)
    {
    }
    double x(const char* name, double fallback = 0) const
    {
        return read(name, viewport_.width, fallback);
    }
    double y(const char* name, double fallback = 0) const
    {
        return read(name, viewport_.height, fallback);
    }
    double r(const char* name) const { return read(name, viewport_.diagonal(), 0); }

private:
    double read(const char* name, double percentBase, double fallback) const
    {
        return parseLength(node_.attribute(name).value(), {percentBase, fontSize_}, fallback);
    }
    pugi::xml_node node_;
    const ViewportSize& viewport_;
    double fontSize_;
};

// Clockwise from the left end of the top edge, or for an ellipse from its right end: where dashes
// begin.
Outline outlineOf(const RoundedBox& box)
{
    const double left = box.centre.x - box.halfWidth;
    const double right = box.centre.x + box.halfWidth;
    const double top = box.centre.y - box.halfHeight;
    const double bottom = box.centre.y + box.halfHeight;
    const double rx = box.rx;
    const double ry = box.ry;
    Outline outline;
    if (rx == box.halfWidth && ry == box.halfHeight && rx > 0 && ry > 0) {
        outline.moveTo({right, box.centre.y});
        outline.arcTo(rx, ry, 0, false, true, {box.centre.x, bottom});
        outline.arcTo(rx, ry, 0, false, true, {left, box.centre.y});
        outline.arcTo(rx, ry, 0, false, true, {box.centre.x, top});
        outline.arcTo(rx, ry, 0, false, true, {right, box.centre.y});
    } else {
        const bool round = rx > 0 && ry > 0;
        outline.moveTo({left + rx, top});
        outline.lineTo({right - rx, top});
        if (round) outline.arcTo(rx, ry, 0, false, true, {right, top + ry});
        outline.lineTo({right, bottom - ry});
        if (round) outline.arcTo(rx, ry, 0, false, true, {right - rx, bottom});
        outline.lineTo({left + rx, bottom});
        if (round) outline.arcTo(rx, ry, 0, false, true, {left, bottom - ry});
        outline.lineTo({left, top + ry});
        if (round) outline.arcTo(rx, ry, 0, false, true, {left + rx, top});
    }
    outline.close();
    return outline;
}

Shape makeBox(const RoundedBox& box)
{
    Shape shape;
    if (!(box.halfWidth > 0 && box.halfHeight > 0)) return shape;
    shape.outline = outlineOf(box);
    if (box.rx > 0 && box.ry > 0) shape.box = box;
    return shape;
}

Shape makeRect(const Lengths& lengths)
{
    RoundedBox box;
    box.halfWidth = lengths.x("width") / 2;
    box.halfHeight = lengths.y("height") / 2;
    box.centre = {lengths.x("x") + box.halfWidth, lengths.y("y") + box.halfHeight};
    const double rx = lengths.x("rx", -1);
    const double ry = lengths.y("ry", -1);
    box.rx = std::clamp(rx < 0 ? ry : rx, 0.0, std::max(0.0, box.halfWidth));
    box.ry = std::clamp(ry < 0 ? rx : ry, 0.0, std::max(0.0, box.halfHeight));
    if (box.rx <= 0 || box.ry <= 0) box.rx = box.ry = 0;
    return makeBox(box);
}

Shape makeEllipse(Point centre, double rx, double ry)
{
    return makeBox({centre, rx, ry, rx, ry});
}

Shape makePoly(const char* points, bool closed)
{
    Shape shape;
    const std::vector<double> v = parseNumbers(points);
    shape.malformed = v.size() % 2 != 0;
    for (size_t i = 0; i + 1 < v.size(); i += 2) {
        if (i == 0)
            shape.outline.moveTo({v[0], v[1]});
        else
            shape.outline.lineTo({v[i], v[i + 1]});
    }
    if (closed && !shape.outline.empty()) shape.outline.close();
    return shape;
}

} // namespace

bool isShape(std::string_view name)
{
    return name == "path" || name == "rect" || name == "circle" || name == "ellipse" ||
           name == "line" || name == "polyline" || name == "polygon";
}

Shape makeShape(pugi::xml_node node, const ViewportSize& viewport, double fontSize)
{
    const std::string_view name = localName(node.name());
    const Lengths lengths(node, viewport, fontSize);
    if (name == "rect") return makeRect(lengths);
    if (name == "circle")
        return makeEllipse({lengths.x("cx"), lengths.y("cy")}, lengths.r("r"), lengths.r("r"));
    if (name == "ellipse")
        return makeEllipse({lengths.x("cx"), lengths.y("cy")}, lengths.x("rx"), lengths.y("ry"));
    if (name == "polyline" || name == "polygon")
        return makePoly(node.attribute("points").value(), name == "polygon");

    Shape shape;
    if (name == "line") {
        shape.outline.moveTo({lengths.x("x1"), lengths.y("y1")});
        shape.outline.lineTo({lengths.x("x2"), lengths.y("y2")});
    } else if (name == "path") {
        shape.malformed = !parsePath(node.attribute("d").value(), shape.outline);
    }
    return shape;
}
