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

Gradient::Spread spreadOf(std::string_view text)
{
    if (text == "repeat") return Gradient::Repeat;
    return text == "reflect" ? Gradient::Reflect : Gradient::Pad;
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
    const LengthContext lengths{units, document.styleOf(node, viewport).fontSize};
    const std::optional<Affine> transform = parseTransform(chain["gradientTransform"], lengths);
    gradient.transform = transform.value_or(Affine());
    const auto length = [&](const char* name, Axis axis, double fallback) {
        return chain.length(name, lengths, axis, fallback);
    };
    const double width = units.width;
    const double height = units.height;
    if (gradient.radial) {
        gradient.end = {length("cx", Axis::X, width / 2), length("cy", Axis::Y, height / 2)};
        gradient.radius = length("r", Axis::Diagonal, units.diagonal() / 2);
        gradient.start = {length("fx", Axis::X, gradient.end.x),
                          length("fy", Axis::Y, gradient.end.y)};
        gradient.innerRadius = std::max(0.0, length("fr", Axis::Diagonal, 0));
        if (gradient.radius < 0) gradient.stops.clear();
    } else {
        gradient.start = {length("x1", Axis::X, 0), length("y1", Axis::Y, 0)};
        gradient.end = {length("x2", Axis::X, width), length("y2", Axis::Y, 0)};
    }
    return gradient;
}

std::optional<double> Gradient::parameterAt(Point p) const
{
    const Point along = end - start;
    const Point q = p - start;
    const double dot = q.x * along.x + q.y * along.y;
    const double square = along.x * along.x + along.y * along.y;
    if (!radial) return dot / square;

    // The largest t whose circle, of radius innerRadius + t * growth, passes through the point:
    // a t^2 - 2 b t + c = 0.
    const double growth = radius - innerRadius;
    const double a = square - growth * growth;
    const double b = dot + innerRadius * growth;
    const double c = q.x * q.x + q.y * q.y - innerRadius * innerRadius;
    const auto fits = [&](double t) { return innerRadius + t * growth >= 0; };
    if (std::fabs(a) < 1e-12 * (square + growth * growth)) {
        const double t = c / (2 * b);
        if (b != 0 && fits(t)) return t;
        return std::nullopt;
    }
    const double root = std::sqrt(b * b - a * c); // not a number outside of a cone
    const double t1 = (b + root) / a;
    const double t2 = (b - root) / a;
    if (fits(std::max(t1, t2))) return std::max(t1, t2);
    if (fits(std::min(t1, t2))) return std::min(t1, t2);
    return std::nullopt;
}

Pixel Gradient::colourAt(double t) const
{
    if (spread == Repeat) t -= std::floor(t);
    if (spread == Reflect) {
        t = std::fabs(std::remainder(t, 2));
    }
    if (!(t > stops.front().offset)) return stops.front().colour;
    if (t >= stops.back().offset) return stops.back().colour;
    const auto after =
        std::upper_bound(stops.begin(), stops.end(), t,
                         [](double value, const Stop& s) { return value < s.offset; });
    const auto before = after - 1;
    const double part = (t - before->offset) / (after->offset - before->offset);
    Pixel result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const double from = before->colour >> shift & 0xFF;
        const double to = after->colour >> shift & 0xFF;
        result |= static_cast<Pixel>(std::lround(from + (to - from) * part)) << shift;
    }
    return result;
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
    if (!matrix.isFinite()) return false;

    // Without an extent the last colour is everywhere.
    const Point along = gradient.end - gradient.start;
    const bool focal =
        gradient.radial && (along.x != 0 || along.y != 0 || gradient.innerRadius > 0);
    const bool flat = gradient.radial ? gradient.radius == 0 : along.x == 0 && along.y == 0;
    if (flat) gradient.stops = {gradient.stops.back()};
    if (gradient.stops.size() > 1 && (gradient.spread != Gradient::Pad || focal))
        return setPicture(paint, gradient, matrix, visible);
    setRamp(paint, gradient, matrix);
    return true;
}

void GradientPaint::setRamp(MMPaint& paint, const Gradient& gradient, const Affine& matrix)
{
    colours_.clear();
    offsets_.clear();
    for (const Gradient::Stop& stop : gradient.stops) {
        colours_.push_back(stop.colour);
        offsets_.push_back(toFixed(stop.offset));
    }
    const auto count = static_cast<uint32_t>(colours_.size());
    rampColours_.resize(gradientRampRoom(count));
    rampOffsets_.resize(gradientRampRoom(count));

    // As for paths: a space with the start as its origin and a unit near a pixel.
    int exponent = 0;
    std::frexp(matrix.norm(), &exponent);
    const double scale = std::ldexp(1.0, exponent);
    const Point origin = matrix.map(gradient.start);
    const Matrix2D fixed = {toFixed(matrix.a / scale), toFixed(matrix.b / scale),
                            toFixed(matrix.c / scale), toFixed(matrix.d / scale),
                            toFixed(origin.x),         toFixed(origin.y)};
    const GradientStops stops = {colours_.data(), offsets_.data(), count};
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

// What the library's ramps cannot do, computed pixel by pixel.
bool GradientPaint::setPicture(MMPaint& paint, const Gradient& gradient, const Affine& matrix,
                               const Box& visible)
{
    const std::optional<Affine> inverse = matrix.inverse();
    if (!inverse || !visible.hasArea()) return false;
    const int left = static_cast<int>(std::floor(visible.left));
    const int top = static_cast<int>(std::floor(visible.top));
    picture_ = Picture(static_cast<int>(std::ceil(visible.right)) - left,
                       static_cast<int>(std::ceil(visible.bottom)) - top, 0);
    for (int y = 0; y < picture_.height; ++y) {
        for (int x = 0; x < picture_.width; ++x) {
            const Point p = inverse->map({left + x + 0.5, top + y + 0.5});
            const std::optional<double> t = gradient.parameterAt(p);
            if (!t) continue;
            picture_.at(x, y) = gradient.colourAt(*t);
        }
    }
    const auto width = static_cast<uint16_t>(picture_.width);
    const auto height = static_cast<uint16_t>(picture_.height);
    const MMPixmap pixmap = {width, height, width * 4u, 0, picture_.pixels.data(), 1};
    const Matrix2D place = {kFixedOne, 0, 0, kFixedOne, fixFromInt(left), fixFromInt(top)};
    setPattern(paint, pixmap, place, kFilterNearest, true);
    return true;
}

} // namespace Svg
} // namespace KAVO
