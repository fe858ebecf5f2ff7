// SPDX-License-Identifier: MIT
#include "svg/geometry/Shapes.h"

#include "svg/values/PathParser.h"
#include "svg/values/TextScanner.h"

namespace KAVO {
namespace Svg {

namespace {

// Reads the element's lengths, which are attributes or properties.
class Lengths {
public:
    Lengths(pugi::xml_node node, const Properties& properties, const LengthContext& context)
        : node_(node), properties_(properties), context_(context)
    {
    }
    std::optional<double> find(Property property, Axis axis) const
    {
        return findLength(properties_[property], context_, axis);
    }
    double x(Property property) const { return find(property, Axis::X).value_or(0); }
    double y(Property property) const { return find(property, Axis::Y).value_or(0); }
    double r(Property property) const { return find(property, Axis::Diagonal).value_or(0); }
    double attribute(const char* name, Axis axis) const
    {
        return parseLength(node_.attribute(name).value(), context_, axis, 0);
    }
    // A radius of which auto, nothing and what is wrong count as not given.
    std::optional<double> radius(Property property, Axis axis) const
    {
        const std::optional<double> value = find(property, axis);
        return value && *value >= 0 ? value : std::nullopt;
    }

private:
    pugi::xml_node node_;
    const Properties& properties_;
    const LengthContext& context_;
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
    box.halfWidth = lengths.x(Property::Width) / 2;
    box.halfHeight = lengths.y(Property::Height) / 2;
    box.centre = {lengths.x(Property::X) + box.halfWidth, lengths.y(Property::Y) + box.halfHeight};
    const std::optional<double> rx = lengths.radius(Property::Rx, Axis::X);
    const std::optional<double> ry = lengths.radius(Property::Ry, Axis::Y);
    const auto held = [](double radius, double most) {
        return std::min(radius, std::max(0.0, most));
    };
    box.rx = held(rx.value_or(ry.value_or(0)), box.halfWidth);
    box.ry = held(ry.value_or(rx.value_or(0)), box.halfHeight);
    if (box.rx <= 0 || box.ry <= 0) box.rx = box.ry = 0;
    return makeBox(box);
}

Shape makeCircle(const Lengths& lengths)
{
    const double r = lengths.r(Property::R);
    return makeBox({{lengths.x(Property::Cx), lengths.y(Property::Cy)}, r, r, r, r});
}

// A radius that is not given is as long as the other.
Shape makeEllipse(const Lengths& lengths)
{
    const std::optional<double> rx = lengths.radius(Property::Rx, Axis::X);
    const std::optional<double> ry = lengths.radius(Property::Ry, Axis::Y);
    const double x = rx.value_or(ry.value_or(0));
    const double y = ry.value_or(rx.value_or(0));
    return makeBox({{lengths.x(Property::Cx), lengths.y(Property::Cy)}, x, y, x, y});
}

Shape makePoly(const char* points, bool closed)
{
    Shape shape;
    size_t read = 0;
    const std::vector<double> v = parseNumbers(points, &read);
    shape.malformed = v.size() % 2 != 0 || points[read] != '\0';
    for (size_t i = 0; i + 1 < v.size(); i += 2) {
        if (i == 0)
            shape.outline.moveTo({v[0], v[1]});
        else
            shape.outline.lineTo({v[i], v[i + 1]});
    }
    if (closed && !shape.outline.empty()) shape.outline.close();
    return shape;
}

// Of style sheets, or else of the attribute.
std::string_view pathData(pugi::xml_node node, const Properties& properties)
{
    const std::string_view value = properties[Property::D];
    if (value == "none") return {};
    return pathDataIn(value).value_or(node.attribute("d").value());
}

Shape makeOutline(pugi::xml_node node, const Properties& properties, const LengthContext& context)
{
    const std::string_view name = node.name();
    const Lengths lengths(node, properties, context);
    if (name == "rect") return makeRect(lengths);
    if (name == "circle") return makeCircle(lengths);
    if (name == "ellipse") return makeEllipse(lengths);
    if (name == "polyline" || name == "polygon")
        return makePoly(node.attribute("points").value(), name == "polygon");

    Shape shape;
    if (name == "line") {
        shape.outline.moveTo({lengths.attribute("x1", Axis::X), lengths.attribute("y1", Axis::Y)});
        shape.outline.lineTo({lengths.attribute("x2", Axis::X), lengths.attribute("y2", Axis::Y)});
    } else if (name == "path") {
        shape.malformed = !parsePath(pathData(node, properties), shape.outline);
    }
    return shape;
}

} // namespace

bool isShape(std::string_view name)
{
    return name == "path" || name == "rect" || name == "circle" || name == "ellipse" ||
           name == "line" || name == "polyline" || name == "polygon";
}

Shape makeShape(pugi::xml_node node, const Properties& properties, const LengthContext& context)
{
    Shape shape = makeOutline(node, properties, context);
    TextScanner scanner(trimmed(node.attribute("pathLength").value()));
    double pathLength = 0;
    if (scanner.number(pathLength) && scanner.atEnd() && pathLength > 0)
        shape.pathLength = pathLength;
    return shape;
}

} // namespace Svg
} // namespace KAVO
