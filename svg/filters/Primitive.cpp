// SPDX-License-Identifier: MIT
#include "svg/filters/Primitive.h"

#include "svg/style/Style.h"
#include "svg/values/BlendModes.h"
#include "svg/values/TextScanner.h"

#include <iterator>

namespace KAVO {
namespace Svg {

namespace {

EffectPointer makeImage(Primitive& primitive)
{
    return primitive.target.image(primitive.node, primitive.region);
}

EffectPointer makeBlurEffect(Primitive& primitive)
{
    const std::string_view edges = primitive.text("edgeMode");
    if (edges.empty() || edges == "none") return primitive.blur(0);
    primitive.problem = " with an edgeMode";
    return nullptr;
}

EffectPointer makeOffsetEffect(Primitive& primitive)
{
    return primitive.offset(0);
}

EffectPointer makeMergeEffect(Primitive&)
{
    return makeMerge();
}

EffectPointer makeFloodEffect(Primitive& primitive)
{
    return makeFlood(primitive.flood());
}

EffectPointer makeBlendEffect(Primitive& primitive)
{
    return makeBlend(blendModeOf(primitive.text("mode")));
}

EffectPointer makeTileEffect(Primitive& primitive)
{
    const Box tile = primitive.target.toDevice.mapBox(primitive.inputRegion);
    return tile.width() >= 1 && tile.height() >= 1 ? makeTile(tile) : makeFlood(0);
}

EffectPointer makeMatrixEffect(Primitive& primitive)
{
    const std::string_view type = primitive.text("type");
    const std::vector<double> values = parseNumbers(primitive.text("values"));
    ColourMatrix matrix = saturating(1);
    if (type == "luminanceToAlpha") {
        matrix = alphaFromLuminance();
    } else if (type == "saturate") {
        if (values.size() == 1) matrix = saturating(values[0]);
    } else if (type == "hueRotate") {
        if (values.size() == 1) matrix = turningHue(values[0]);
    } else if (values.size() == matrix.size()) {
        std::copy(values.begin(), values.end(), matrix.begin());
    }
    return makeColourMatrix(matrix);
}

EffectPointer makeCompositeEffect(Primitive& primitive)
{
    static constexpr std::string_view kNames[] = {"over", "in",      "out",       "atop",
                                                  "xor",  "lighter", "arithmetic"};
    const auto* found = std::find(std::begin(kNames), std::end(kNames), primitive.text("operator"));
    if (found == std::end(kNames)) return makeComposite(CompositeOperator::Over);
    return makeComposite(static_cast<CompositeOperator>(found - std::begin(kNames)),
                         {primitive.number("k1", 0), primitive.number("k2", 0),
                          primitive.number("k3", 0), primitive.number("k4", 0)});
}

TransferFunction readTransfer(pugi::xml_node node)
{
    static constexpr std::string_view kNames[] = {"identity", "table", "discrete", "linear",
                                                  "gamma"};
    const auto number = [&](const char* name, double fallback) {
        const std::vector<double> values = parseNumbers(node.attribute(name).value());
        return values.empty() ? fallback : values[0];
    };
    TransferFunction function;
    const auto* found = std::find(std::begin(kNames), std::end(kNames),
                                  std::string_view(node.attribute("type").value()));
    if (found == std::end(kNames)) return function;
    function.kind = static_cast<TransferFunction::Kind>(found - std::begin(kNames));
    function.values = parseNumbers(node.attribute("tableValues").value());
    function.slope = number("slope", 1);
    function.amplitude = number("amplitude", 1);
    function.exponent = number("exponent", 1);
    const bool linear = function.kind == TransferFunction::Linear;
    function.intercept = number(linear ? "intercept" : "offset", 0);
    return function;
}

// Of several functions for one channel the last one holds.
EffectPointer makeTransferEffect(Primitive& primitive)
{
    static constexpr std::string_view kNames[] = {"feFuncR", "feFuncG", "feFuncB", "feFuncA"};
    std::array<TransferFunction, 4> functions;
    for (const pugi::xml_node child : primitive.node.children()) {
        for (size_t i = 0; i < functions.size(); ++i) {
            if (child.name() == kNames[i]) functions[i] = readTransfer(child);
        }
    }
    return makeComponentTransfer(std::move(functions));
}

EffectPointer makeMorphologyEffect(Primitive& primitive)
{
    const Point radius = primitive.pair("radius", 0);
    const Point device = primitive.target.deviations(radius.x, radius.y);
    const auto pixels = [](double v) {
        return static_cast<int>(std::lround(std::min(v, kLargestDeviation)));
    };
    return makeMorphology(primitive.text("operator") == "dilate", pixels(device.x),
                          pixels(device.y));
}

struct Kind {
    std::string_view name;
    int inputs;
    bool needsRegion;
    EffectPointer (*make)(Primitive&); // null: made of several
};

constexpr Kind kKinds[] = {{"feBlend", 2, false, makeBlendEffect},
                           {"feColorMatrix", 1, false, makeMatrixEffect},
                           {"feComponentTransfer", 1, false, makeTransferEffect},
                           {"feComposite", 2, false, makeCompositeEffect},
                           {"feDropShadow", 1, false, nullptr},
                           {"feFlood", 0, true, makeFloodEffect},
                           {"feGaussianBlur", 1, false, makeBlurEffect},
                           {"feImage", 0, true, makeImage},
                           {"feMerge", -1, false, makeMergeEffect},
                           {"feMorphology", 1, false, makeMorphologyEffect},
                           {"feOffset", 1, false, makeOffsetEffect},
                           {"feTile", 1, true, makeTileEffect}};

const Kind* kindOf(pugi::xml_node node)
{
    const auto* found = std::find_if(std::begin(kKinds), std::end(kKinds),
                                     [&](const Kind& kind) { return kind.name == node.name(); });
    return found == std::end(kKinds) ? nullptr : found;
}

} // namespace

int Primitive::inputs() const
{
    const Kind* kind = kindOf(node);
    return kind ? kind->inputs : 0;
}

bool Primitive::needsRegion() const
{
    const Kind* kind = kindOf(node);
    return !kind || kind->needsRegion || inputRegion.empty();
}

double Primitive::number(const char* attribute, double fallback) const
{
    const std::vector<double> values = parseNumbers(text(attribute));
    return values.empty() ? fallback : values[0];
}

Point Primitive::toUserUnits(Point p) const
{
    const Box& bounds = target.bounds;
    return inBox ? Point{p.x * bounds.width(), p.y * bounds.height()} : p;
}

Point Primitive::pair(const char* attribute, double fallback) const
{
    std::vector<double> values = parseNumbers(text(attribute));
    if (values.empty()) values.push_back(fallback);
    const double y = values.size() > 1 ? values[1] : values[0];
    if (values[0] < 0 || y < 0) return {};
    return toUserUnits({values[0], y});
}

EffectPointer Primitive::blur(double deviation) const
{
    const Point deviations = pair("stdDeviation", deviation);
    return target.blur(deviations.x, deviations.y);
}

EffectPointer Primitive::offset(double distance) const
{
    const Point moved = toUserUnits({number("dx", distance), number("dy", distance)});
    return target.offset(moved.x, moved.y);
}

uint32_t Primitive::flood() const
{
    return withOpacity(style.floodColour, style.floodOpacity);
}

EffectPointer makeEffect(Primitive& primitive)
{
    const Kind* kind = kindOf(primitive.node);
    return kind ? kind->make(primitive) : nullptr;
}

} // namespace Svg
} // namespace KAVO
