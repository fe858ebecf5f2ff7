// SPDX-License-Identifier: MIT
#include "svg/filters/Primitive.h"

#include "svg/filters/Convolution.h"
#include "svg/filters/Lighting.h"
#include "svg/filters/Turbulence.h"
#include "svg/style/Style.h"
#include "svg/values/BlendModes.h"
#include "svg/values/TextScanner.h"

#include <iterator>
#include <numeric>

namespace KAVO {
namespace Svg {

namespace {

constexpr size_t kMostFactors = 1024; // of a convolution

// Matrices count in pixels of the device.
void noteUnitLength(Primitive& primitive)
{
    if (!primitive["kernelUnitLength"].empty()) primitive.problem = " with a kernelUnitLength";
}

EffectPointer makeImage(Primitive& primitive)
{
    return primitive.target.image(primitive.node, primitive.wholeRegion);
}

EffectPointer makeBlurEffect(Primitive& primitive)
{
    const std::string_view edges = primitive["edgeMode"];
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
    return makeBlend(blendModeOf(primitive["mode"]));
}

EffectPointer makeTileEffect(Primitive& primitive)
{
    const Box tile = primitive.target.toDevice.mapBox(primitive.inputRegion);
    return tile.width() >= 1 && tile.height() >= 1 ? makeTile(tile) : makeFlood(0);
}

EffectPointer makeMatrixEffect(Primitive& primitive)
{
    const std::string_view type = primitive["type"];
    const std::vector<double> values = parseNumbers(primitive["values"]);
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
    const auto* found = std::find(std::begin(kNames), std::end(kNames), primitive["operator"]);
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

// Nothing when a number is wrong: then the result is transparent.
std::optional<Convolution> readConvolution(const Primitive& primitive)
{
    Convolution c;
    const std::vector<double> order = parseNumbers(primitive["order"]);
    const auto side = [&](size_t i) {
        return order.empty() ? 3 : order[std::min(i, order.size() - 1)];
    };
    const std::vector<double> matrix = parseNumbers(primitive["kernelMatrix"]);
    const double count = side(0) * side(1);
    if (!(side(0) >= 1 && side(1) >= 1) || side(0) != std::floor(side(0)) ||
        side(1) != std::floor(side(1)) || count != static_cast<double>(matrix.size()))
        return std::nullopt;
    c.columns = static_cast<int>(side(0));
    c.rows = static_cast<int>(side(1));
    const int middleX = c.columns / 2;
    const int middleY = c.rows / 2;
    const double targetX = primitive.number("targetX", middleX);
    const double targetY = primitive.number("targetY", middleY);
    if (!(targetX >= 0 && targetX < c.columns && targetY >= 0 && targetY < c.rows))
        return std::nullopt;
    c.targetX = static_cast<int>(targetX);
    c.targetY = static_cast<int>(targetY);
    const double sum = std::accumulate(matrix.begin(), matrix.end(), 0.0);
    double divisor = primitive.number("divisor", 0);
    if (divisor == 0) divisor = sum == 0 ? 1 : sum;
    // The last factor is that of the first pixel.
    std::for_each(matrix.rbegin(), matrix.rend(),
                  [&](double factor) { c.factors.push_back(factor / divisor); });
    c.bias = primitive.number("bias", 0);
    c.preservesAlpha = primitive["preserveAlpha"] == "true";
    const std::string_view edges = primitive["edgeMode"];
    if (edges == "wrap") c.edgeMode = EdgeMode::Wrap;
    if (edges == "none") c.edgeMode = EdgeMode::None;
    c.edges = primitive.target.areaOf(primitive.region);
    return c;
}

EffectPointer makeConvolutionEffect(Primitive& primitive)
{
    std::optional<Convolution> convolution = readConvolution(primitive);
    if (!convolution) return makeFlood(0);
    if (convolution->factors.size() > kMostFactors) {
        primitive.problem = " of more factors than the limit";
        return nullptr;
    }
    noteUnitLength(primitive);
    return makeConvolution(std::move(*convolution));
}

EffectPointer makeMorphologyEffect(Primitive& primitive)
{
    const Point radius = primitive.radii("radius", 0);
    const auto pixels = [](double v) { return static_cast<int>(std::lround(v)); };
    return makeMorphology(primitive["operator"] == "dilate", pixels(radius.x), pixels(radius.y));
}

size_t channelOf(std::string_view name)
{
    return std::min<size_t>(kAlpha, std::string_view("RGB").find(name.empty() ? 'A' : name[0]));
}

EffectPointer makeDisplacementEffect(Primitive& primitive)
{
    const double limit = 2 * kLargestDeviation;
    const double scale = primitive.number("scale", 0);
    const Point user = primitive.toUserUnits({scale, scale});
    const Affine& m = primitive.target.toDevice;
    Affine device{m.a * user.x, m.b * user.x, m.c * user.y, m.d * user.y, 0, 0};
    if (!(device.norm() <= limit)) {
        primitive.problem = " of a larger scale than the limit";
        return nullptr;
    }
    return makeDisplacement(device, channelOf(primitive["xChannelSelector"]),
                            channelOf(primitive["yChannelSelector"]));
}

// With places in device pixels, and heights in the mean scale.
Light readLight(const Primitive& primitive, pugi::xml_node node)
{
    const auto number = [&](const char* name, double fallback) {
        const std::vector<double> values = parseNumbers(node.attribute(name).value());
        return values.empty() ? fallback : values[0];
    };
    const FilterTarget& target = primitive.target;
    const double scale = std::sqrt(std::fabs(target.toDevice.determinant()));
    const auto place = [&](const char* x, const char* y, const char* z) {
        const Box& bounds = target.bounds;
        Point user = primitive.toUserUnits({number(x, 0), number(y, 0)});
        double height = number(z, 0);
        if (primitive.inBox) {
            user = user + Point{bounds.left, bounds.top};
            height *= std::hypot(bounds.width(), bounds.height()) / std::sqrt(2.0);
        }
        const Point device = target.toDevice.map(user);
        return Vector{device.x, device.y, height * scale};
    };
    const double degree = std::acos(-1.0) / 180;
    Light light;
    if (node.name() == std::string_view("feDistantLight")) {
        const double azimuth = number("azimuth", 0) * degree;
        const double elevation = number("elevation", 0) * degree;
        const Point turned = target.toDevice.mapVector({std::cos(azimuth), std::sin(azimuth)});
        const double length = std::hypot(turned.x, turned.y);
        const double share = length > 0 ? std::cos(elevation) / length : 0;
        light.place = {turned.x * share, turned.y * share, std::sin(elevation)};
        return light;
    }
    light.place = place("x", "y", "z");
    light.kind = Light::Point;
    if (node.name() == std::string_view("fePointLight")) return light;
    light.kind = Light::Spot;
    light.pointsAt = place("pointsAtX", "pointsAtY", "pointsAtZ");
    light.exponent = std::max(0.0, number("specularExponent", 1));
    const double cone = std::fabs(number("limitingConeAngle", 90));
    light.leastCosine = std::cos(std::min(cone, 90.0) * degree);
    return light;
}

EffectPointer makeLightingEffect(Primitive& primitive)
{
    const pugi::xml_node node = primitive.node.find_child([](pugi::xml_node child) {
        const std::string_view name = child.name();
        return name == "feDistantLight" || name == "fePointLight" || name == "feSpotLight";
    });
    if (!node) return makeFlood(0);
    Lighting lighting;
    lighting.specular = primitive.node.name() == std::string_view("feSpecularLighting");
    lighting.surfaceScale = primitive.number("surfaceScale", 1) *
                            std::sqrt(std::fabs(primitive.target.toDevice.determinant()));
    lighting.constant = std::max(
        0.0, primitive.number(lighting.specular ? "specularConstant" : "diffuseConstant", 1));
    lighting.exponent = std::clamp(primitive.number("specularExponent", 1), 1.0, 128.0);
    lighting.colour = primitive.style.lightingColour;
    lighting.light = readLight(primitive, node);
    lighting.edges = primitive.target.areaOf(primitive.region);
    noteUnitLength(primitive);
    return makeLighting(lighting);
}

EffectPointer makeTurbulenceEffect(Primitive& primitive)
{
    // Further ones are less than a 16-bit channel can show.
    constexpr double kMostOctaves = 16;
    constexpr double kLargestSeed = 1LL << 32;
    const std::optional<Affine> toUser = primitive.target.toDevice.inverse();
    if (!toUser) return makeFlood(0);
    const Point frequency = primitive.pair("baseFrequency", 0);
    Turbulence turbulence;
    turbulence.frequencyX = frequency.x;
    turbulence.frequencyY = frequency.y;
    turbulence.octaves =
        static_cast<int>(std::clamp(primitive.number("numOctaves", 1), 0.0, kMostOctaves));
    turbulence.seed =
        static_cast<int64_t>(std::clamp(primitive.number("seed", 0), -kLargestSeed, kLargestSeed));
    turbulence.fractal = primitive["type"] == "fractalNoise";
    turbulence.stitches = primitive["stitchTiles"] == "stitch";
    turbulence.tile = primitive.region;
    turbulence.toUser = *toUser;
    return makeTurbulence(turbulence);
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
                           {"feConvolveMatrix", 1, false, makeConvolutionEffect},
                           {"feDiffuseLighting", 1, false, makeLightingEffect},
                           {"feDisplacementMap", 2, false, makeDisplacementEffect},
                           {"feDropShadow", 1, false, nullptr},
                           {"feFlood", 0, true, makeFloodEffect},
                           {"feGaussianBlur", 1, false, makeBlurEffect},
                           {"feImage", 0, true, makeImage},
                           {"feMerge", -1, false, makeMergeEffect},
                           {"feMorphology", 1, false, makeMorphologyEffect},
                           {"feOffset", 1, false, makeOffsetEffect},
                           {"feSpecularLighting", 1, false, makeLightingEffect},
                           {"feTile", 1, true, makeTileEffect},
                           {"feTurbulence", 0, true, makeTurbulenceEffect}};

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
    const std::vector<double> values = parseNumbers((*this)[attribute]);
    return values.empty() ? fallback : values[0];
}

Point Primitive::toUserUnits(Point p) const
{
    const Box& bounds = target.bounds;
    return inBox ? Point{p.x * bounds.width(), p.y * bounds.height()} : p;
}

Point Primitive::pair(const char* attribute, double fallback) const
{
    std::vector<double> values = parseNumbers((*this)[attribute]);
    if (values.empty()) values.push_back(fallback);
    const double y = values.size() > 1 ? values[1] : values[0];
    if (values[0] < 0 || y < 0) return {};
    return {values[0], y};
}

Point Primitive::radii(const char* attribute, double fallback)
{
    const Point user = toUserUnits(pair(attribute, fallback));
    const Point device = target.deviations(user.x, user.y);
    if (!isWithinLimit(device)) problem = " of a larger radius than the limit";
    return {std::min(device.x, kLargestDeviation), std::min(device.y, kLargestDeviation)};
}

EffectPointer Primitive::blur(double deviation)
{
    const Point device = radii("stdDeviation", deviation);
    return makeBlur(device.x, device.y);
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
