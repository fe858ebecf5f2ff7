// SPDX-License-Identifier: MIT
#include "svg2png/Gradients.h"

#include "svg2png/Colour.h"
#include "svg2png/PathEncoder.h"
#include "svg2png/Style.h"
#include "svg2png/TransformParser.h"

using namespace KAVO::Graphics2D;

namespace {

void readStops(pugi::xml_node node, uint32_t currentColour, Gradient& gradient)
{
    double previous = 0;
    for (const pugi::xml_node stop : node.children()) {
        if (localName(stop.name()) != "stop") continue;
        const Properties properties(stop);
        const uint32_t current =
            parseColour(properties["color"], currentColour).value_or(currentColour);
        const uint32_t rgb =
            parseColour(properties["stop-color"], current).value_or(0xFF000000) & 0xFFFFFF;
        const double opacity = parseOpacity(properties["stop-opacity"], 1);
        gradient.colours.push_back(static_cast<uint32_t>(std::lround(opacity * 255)) << 24 | rgb);
        previous = std::max(previous, parseOpacity(stop.attribute("offset").value(), 0));
        gradient.offsets.push_back(toFixed(previous));
    }
}

} // namespace

void Gradient::adaptToGlyphs()
{
    if (colours.empty()) return;
    colours.insert(colours.begin(), forGlyphs(colours.front()));
    offsets.insert(offsets.begin(), offsets.front());
    colours.push_back(forGlyphs(colours.back()));
    offsets.push_back(offsets.back());
}

std::optional<Gradient> readGradient(const SvgDocument& document, pugi::xml_node node,
                                     const ViewportSize& viewport, uint32_t currentColour,
                                     std::set<std::string>& shortcomings)
{
    const std::string_view kind = localName(node.name());
    if (kind != "linearGradient" && kind != "radialGradient") return std::nullopt;
    const ReferenceChain chain(document, node);
    Gradient gradient;
    gradient.radial = kind == "radialGradient";
    gradient.inBox = chain["gradientUnits"] != std::string_view("userSpaceOnUse");
    gradient.transform = parseTransform(chain["gradientTransform"]).value_or(Affine());
    for (const pugi::xml_node link : chain.elements()) {
        readStops(link, currentColour, gradient);
        if (!gradient.colours.empty()) break;
    }

    const ViewportSize size = gradient.inBox ? ViewportSize{1, 1} : viewport;
    const auto length = [&](const char* name, double percentBase, double percent) {
        const double fallback = percent / 100 * percentBase;
        return parseLength(chain[name], {percentBase, 16}, fallback);
    };
    if (gradient.radial) {
        gradient.start = {length("cx", size.width, 50), length("cy", size.height, 50)};
        gradient.radius = length("r", size.diagonal(), 50);
        const Point focus{parseLength(chain["fx"], {size.width, 16}, gradient.start.x),
                          parseLength(chain["fy"], {size.height, 16}, gradient.start.y)};
        const Point away = focus - gradient.start;
        if (std::hypot(away.x, away.y) > gradient.radius * 0.01)
            shortcomings.insert("focus of a radial gradient");
    } else {
        gradient.start = {length("x1", size.width, 0), length("y1", size.height, 0)};
        gradient.end = {length("x2", size.width, 100), length("y2", size.height, 0)};
    }
    const std::string_view spread = chain["spreadMethod"];
    if (spread == "repeat" || spread == "reflect")
        shortcomings.insert("spreadMethod " + std::string(spread));
    return gradient;
}

bool GradientPaint::set(MMPaint& paint, Gradient gradient, const Affine& toDevice,
                        const Box& shapeBounds)
{
    gradient_ = std::move(gradient);
    const auto count = static_cast<uint32_t>(gradient_.colours.size());
    Affine matrix = toDevice;
    if (gradient_.inBox) {
        if (!(shapeBounds.width() > 0 && shapeBounds.height() > 0)) return false;
        matrix = matrix * Affine{shapeBounds.width(), 0, 0, shapeBounds.height(), shapeBounds.left,
                                 shapeBounds.top};
    }
    matrix = matrix * gradient_.transform;
    if (count == 0 || !matrix.isFinite()) return false;
    rampColours_.resize(gradientRampRoom(count));
    rampOffsets_.resize(gradientRampRoom(count));

    // As for paths: a space with the start as its origin and a unit near a pixel.
    int exponent = 0;
    std::frexp(matrix.norm(), &exponent);
    const double scale = std::ldexp(1.0, exponent);
    const Point origin = matrix.map(gradient_.start);
    const Matrix2D fixed = {toFixed(matrix.a / scale), toFixed(matrix.b / scale),
                            toFixed(matrix.c / scale), toFixed(matrix.d / scale),
                            toFixed(origin.x),         toFixed(origin.y)};
    const GradientStops stops = {gradient_.colours.data(), gradient_.offsets.data(), count};
    const GradientRamp ramp = {rampColours_.data(), rampOffsets_.data()};
    if (gradient_.radial) {
        setRadialGradient(paint, {0, 0}, toFixed(gradient_.radius * scale), fixed, stops, ramp);
    } else {
        const Point end = (gradient_.end - gradient_.start) * scale;
        setLinearGradient(paint, {0, 0}, {toFixed(end.x), toFixed(end.y)}, fixed, stops, ramp);
    }
    return true;
}
