// SPDX-License-Identifier: MIT
// Filter functions: blur(), drop-shadow() and those that change colours. They work in sRGB and have
// no region.
#include "svg/filters/FilterBuilder.h"
#include "svg/style/Style.h"
#include "svg/values/TextScanner.h"

namespace KAVO {
namespace Svg {

namespace {

// A number or a percentage from 0 on; 1 when there is none.
std::optional<double> readAmount(std::string_view text)
{
    if (text.empty()) return 1;
    TextScanner scanner(text);
    double value = 0;
    if (!scanner.number(value) || value < 0) return std::nullopt;
    if (scanner.character('%')) value /= 100;
    return scanner.atEnd() ? std::optional<double>(value) : std::nullopt;
}

// In degrees; 0 when there is none.
std::optional<double> readAngle(std::string_view text)
{
    if (text.empty()) return 0;
    static constexpr std::pair<std::string_view, double> kUnits[] = {
        {"deg", 1}, {"grad", 0.9}, {"rad", 57.29577951308232}, {"turn", 360}};
    TextScanner scanner(text);
    double value = 0;
    if (!scanner.number(value)) return std::nullopt;
    if (scanner.atEnd() && value == 0) return value;
    for (const auto& [unit, degrees] : kUnits) {
        if (equalsIgnoringCase(scanner.rest(), unit)) return value * degrees;
    }
    return std::nullopt;
}

EffectPointer makeLinear(double slope, double intercept, bool ofAlpha)
{
    TransferFunction function;
    function.kind = TransferFunction::Linear;
    function.slope = slope;
    function.intercept = intercept;
    const TransferFunction same;
    if (ofAlpha) return makeComponentTransfer({same, same, same, function});
    return makeComponentTransfer({function, function, function, same});
}

// Towards brown.
ColourMatrix sepia(double share)
{
    const double rest = 1 - share;
    return {0.393 * share + rest,
            0.769 * share,
            0.189 * share,
            0,
            0,
            0.349 * share,
            0.686 * share + rest,
            0.168 * share,
            0,
            0,
            0.272 * share,
            0.534 * share,
            0.131 * share + rest,
            0,
            0,
            0,
            0,
            0,
            1,
            0};
}

// Those of one amount; null when it cannot be read or the name is none of theirs.
EffectPointer makeColourEffect(std::string_view name, std::string_view arguments)
{
    if (name == "hue-rotate") {
        const std::optional<double> angle = readAngle(arguments);
        return angle ? makeColourMatrix(turningHue(*angle)) : nullptr;
    }
    const std::optional<double> amount = readAmount(arguments);
    if (!amount) return nullptr;
    const double share = std::min(*amount, 1.0);
    if (name == "brightness") return makeLinear(*amount, 0, false);
    if (name == "contrast") return makeLinear(*amount, 0.5 - *amount / 2, false);
    if (name == "invert") return makeLinear(1 - 2 * share, share, false);
    if (name == "opacity") return makeLinear(share, 0, true);
    if (name == "grayscale") return makeColourMatrix(saturating(1 - share));
    if (name == "saturate") return makeColourMatrix(saturating(*amount));
    if (name == "sepia") return makeColourMatrix(sepia(share));
    return nullptr;
}

EffectPointer makeBlurOf(double deviation, FilterBuilder& builder)
{
    const Point device = builder.target().deviations(deviation, deviation);
    if (!isWithinLimit(device)) builder.note("filter of a larger radius than the limit", {});
    return makeBlur(device.x, device.y);
}

// [colour] dx dy [deviation] [colour]
bool addDropShadow(std::string_view arguments, const FilterBuilder::Result& input,
                   FilterBuilder& builder)
{
    const FilterTarget& target = builder.target();
    const LengthContext lengths = target.style.lengths(target.viewport);
    std::optional<uint32_t> colour = findColour(arguments, target.style.colour, &arguments);
    std::vector<double> values;
    for (arguments = trimmed(arguments); !arguments.empty() && values.size() < 3;) {
        const size_t end = std::min(arguments.find_first_of(" \t\r\n"), arguments.size());
        const std::optional<double> length = findLength(arguments.substr(0, end), lengths, Axis::X);
        if (!length) break;
        values.push_back(*length);
        arguments = trimmed(arguments.substr(end));
    }
    if (!arguments.empty()) {
        if (colour) return false;
        colour = findColour(arguments, target.style.colour);
        if (!colour) return false;
    }
    if (values.size() < 2) return false;
    const double deviation = values.size() > 2 ? values[2] : 0;
    if (deviation < 0) return false;
    builder.addShadow(input, makeBlurOf(deviation, builder), target.offset(values[0], values[1]),
                      colour.value_or(target.style.colour), kEverywhere, false);
    return true;
}

} // namespace

FilterOutcome readFilterFunction(std::string_view name, std::string_view arguments,
                                 FilterBuilder& builder)
{
    const std::string problem = "malformed filter";
    const FilterTarget& target = builder.target();
    arguments = trimmed(arguments);
    const FilterBuilder::Result input = builder.source(kEverywhere);
    if (name == "drop-shadow")
        return addDropShadow(arguments, input, builder) ? FilterOutcome::Drawn
                                                        : builder.fail(problem);
    EffectPointer effect;
    if (name == "blur") {
        const LengthContext lengths = target.style.lengths(target.viewport);
        const double deviation =
            arguments.empty() ? 0 : parseLength(arguments, lengths, Axis::X, -1);
        if (deviation >= 0) effect = makeBlurOf(deviation, builder);
    } else {
        effect = makeColourEffect(name, arguments);
    }
    if (!effect) return builder.fail(problem);
    builder.add(std::move(effect), {input.step}, kEverywhere, false);
    return FilterOutcome::Drawn;
}

} // namespace Svg
} // namespace KAVO
