// SPDX-License-Identifier: MIT
#include "svg/paint/Gradients.h"

#include "svg/document/References.h"
#include "svg/geometry/PathEncoder.h"
#include "svg/values/TransformParser.h"

#include <algorithm>
#include <cmath>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

// Units of the space that a source is set up in, and how often the space is made coarser to reach
// the whole gradient.
constexpr double kReach = 16000;
constexpr int kMostHalvings = 14;

constexpr double kRounding = 1.0 / 8192; // units that rounding does not move a distance by

void readStops(const SvgDocument& document, pugi::xml_node node, const Viewport& viewport,
               Gradient& gradient)
{
    const Style style = document.styleOf(node, viewport);
    double previous = 0;
    for (const pugi::xml_node stop : node.children()) {
        if (stop.name() != std::string_view("stop")) continue;
        const Style own = style.child(Properties(stop, document.sheet()), viewport);
        previous = std::max(previous, parseOpacity(stop.attribute("offset").value(), 0));
        gradient.stops.push_back({previous, withOpacity(own.stopColour, own.stopOpacity)});
    }
}

MMSpread spreadOf(std::string_view text)
{
    if (text == "repeat") return kSpreadRepeat;
    return text == "reflect" ? kSpreadReflect : kSpreadPad;
}

// The power of two next above the pixels that a unit is drawn as.
double pixelScale(const Affine& matrix)
{
    int exponent = 0;
    std::frexp(matrix.norm(), &exponent);
    return std::ldexp(1.0, exponent);
}

// A matrix after a division by the scale, with another translation.
Matrix2D fixedMatrix(const Affine& matrix, double scale, Point origin)
{
    return {toFixed(matrix.a / scale), toFixed(matrix.b / scale), toFixed(matrix.c / scale),
            toFixed(matrix.d / scale), toFixed(origin.x),         toFixed(origin.y)};
}

} // namespace

Gradient readGradient(const SvgDocument& document, pugi::xml_node node, const Viewport& viewport)
{
    const ReferenceChain chain(document, node);
    Gradient gradient;
    gradient.radial = node.name() == std::string_view("radialGradient");
    gradient.inBox = chain["gradientUnits"] != std::string_view("userSpaceOnUse");
    gradient.spread = spreadOf(chain["spreadMethod"]);
    for (const pugi::xml_node link : chain.elements()) {
        readStops(document, link, viewport, gradient);
        if (!gradient.stops.empty()) break;
    }

    Viewport units = viewport;
    if (gradient.inBox) units.width = units.height = 1;
    const Style style = document.styleOf(node, viewport);
    const LengthContext lengths{units, style.fontSize};
    const std::optional<Affine> transform =
        parseTransformAttribute(chain["gradientTransform"], lengths);
    const Box whole{0, 0, viewport.width, viewport.height};
    const std::optional<Point> origin =
        parseTransformOrigin(style.transformOrigin, {viewport, style.fontSize}, whole);
    gradient.transform = around(origin.value_or(Point()), transform.value_or(Affine()));
    const auto length = [&](const char* name, Axis axis, double fallback) {
        return chain.length(name, lengths, axis, fallback);
    };
    const double width = units.width;
    const double height = units.height;
    if (gradient.radial) {
        gradient.end = {length("cx", Axis::X, width / 2), length("cy", Axis::Y, height / 2)};
        gradient.radius = std::max(0.0, length("r", Axis::Diagonal, units.diagonal() / 2));
        gradient.start = {length("fx", Axis::X, gradient.end.x),
                          length("fy", Axis::Y, gradient.end.y)};
        gradient.innerRadius = std::max(0.0, length("fr", Axis::Diagonal, 0));
    } else {
        gradient.start = {length("x1", Axis::X, 0), length("y1", Axis::Y, 0)};
        gradient.end = {length("x2", Axis::X, width), length("y2", Axis::Y, 0)};
    }
    return gradient;
}

bool GradientPaint::set(MMPaint& paint, Gradient gradient, const Affine& toDevice,
                        const Box& shapeBounds, const Box& visible)
{
    Affine matrix = toDevice;
    if (gradient.inBox) {
        if (!shapeBounds.hasArea()) return false;
        matrix = matrix * Affine{shapeBounds.width(), 0, 0, shapeBounds.height(), shapeBounds.left,
                                 shapeBounds.top};
    }
    matrix = matrix * gradient.transform;
    if (!matrix.isFinite() || !gradient.transform.inverse()) return false;

    // Without an extent the last colour is everywhere.
    const Point along = gradient.end - gradient.start;
    const bool focal =
        gradient.radial && (along.x != 0 || along.y != 0 || gradient.innerRadius > 0);
    const bool flat = gradient.radial ? gradient.radius == 0 : along.x == 0 && along.y == 0;
    if (flat) gradient.stops = {gradient.stops.back()};
    const double length = std::max({std::fabs(along.x), std::fabs(along.y), gradient.radius});
    const Point origin = matrix.map(gradient.start);
    const bool reachesFar =
        std::max({std::fabs(origin.x), std::fabs(origin.y), length * pixelScale(matrix)}) > kReach;
    if (gradient.stops.size() > 1 && (gradient.spread != kSpreadPad || focal || reachesFar))
        return setSource(paint, gradient, matrix, visible);
    setRamp(paint, gradient, matrix);
    return true;
}

GradientStops GradientPaint::layOutStops(const Gradient& gradient)
{
    colours_.clear();
    offsets_.clear();
    for (const Gradient::Stop& stop : gradient.stops) {
        colours_.push_back(stop.colour);
        offsets_.push_back(toFixed(stop.offset));
    }
    return {colours_.data(), offsets_.data(), static_cast<uint32_t>(colours_.size())};
}

void GradientPaint::setRamp(MMPaint& paint, const Gradient& gradient, const Affine& matrix)
{
    const GradientStops stops = layOutStops(gradient);
    rampColours_.resize(gradientRampRoom(stops.count));
    rampOffsets_.resize(gradientRampRoom(stops.count));

    // As for paths: a space with the start as its origin and a unit near a pixel.
    const double scale = pixelScale(matrix);
    const Matrix2D fixed = fixedMatrix(matrix, scale, matrix.map(gradient.start));
    const GradientRamp ramp = {rampColours_.data(), rampOffsets_.data()};
    if (gradient.radial) {
        setRadialGradient(paint, {0, 0}, toFixed(gradient.radius * scale), fixed, stops, ramp,
                          true);
    } else {
        const Point end = (gradient.end - gradient.start) * scale;
        setLinearGradient(paint, {0, 0}, {toFixed(end.x), toFixed(end.y)}, fixed, stops, ramp,
                          true);
    }
}

// What the library's ramps cannot do.
bool GradientPaint::setSource(MMPaint& paint, const Gradient& gradient, const Affine& matrix,
                              const Box& visible)
{
    const std::optional<Affine> inverse = matrix.inverse();
    if (!inverse || !visible.hasArea()) return false;

    // A space around the middle of what is seen, with a unit near a pixel, or more of them where
    // the gradient reaches far.
    const Point middle = {(visible.left + visible.right) / 2, (visible.top + visible.bottom) / 2};
    const Point origin = inverse->map(middle);
    const Point start = gradient.start - origin;
    const Point end = gradient.end - origin;
    const double reach = std::max({std::fabs(start.x), std::fabs(start.y), std::fabs(end.x),
                                   std::fabs(end.y), gradient.radius, gradient.innerRadius});
    double scale = pixelScale(matrix);
    for (int i = 0; i < kMostHalvings && reach * scale > kReach; ++i)
        scale /= 2;
    const auto point = [scale](Point p) -> MMPoint2D {
        return {toFixed(p.x * scale), toFixed(p.y * scale)};
    };
    const Matrix2D fixed = fixedMatrix(matrix, scale, middle);
    const GradientStops stops = layOutStops(gradient);
    if (!gradient.radial) {
        setLinearSource(paint, source_, point(start), point(end), fixed, stops, gradient.spread);
        return paint.paintType != kPaintNone;
    }
    const MMSourceCircle inner = {point(start), toFixed(gradient.innerRadius * scale)};
    MMSourceCircle outer = {point(end), toFixed(gradient.radius * scale)};
    // A focal point on the circle stays there, or just inside, when the numbers are rounded.
    const Point way = gradient.end - gradient.start;
    const double growth = gradient.radius - gradient.innerRadius;
    const double distance = std::hypot(way.x, way.y);
    if (growth > 0 && std::fabs(distance - growth) * scale < kRounding) {
        const double dx = toDouble(outer.centre.x) - toDouble(inner.centre.x);
        const double dy = toDouble(outer.centre.y) - toDouble(inner.centre.y);
        const double least = std::ceil(std::hypot(dx, dy) * kFixedOne) / kFixedOne;
        outer.radius = std::max(outer.radius, inner.radius + toFixed(least));
    }
    setRadialSource(paint, source_, inner, outer, fixed, stops, gradient.spread);
    return paint.paintType != kPaintNone;
}

} // namespace Svg
} // namespace KAVO
