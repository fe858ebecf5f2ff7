// SPDX-License-Identifier: MIT
#include "svg/values/TransformParser.h"

#include "svg/values/TextScanner.h"

#include <algorithm>
#include <string>
#include <vector>

namespace KAVO {
namespace Svg {

namespace {

constexpr size_t kMostValues = 16;
const double kDegree = std::acos(-1.0) / 180;

// A number and its unit.
struct Value {
    double number = 0;
    std::string_view unit;
};

std::optional<double> degreesOf(const Value& value)
{
    if (value.unit.empty() || value.unit == "deg") return value.number;
    if (value.unit == "rad") return value.number / kDegree;
    if (value.unit == "grad") return value.number * 0.9;
    if (value.unit == "turn") return value.number * 360;
    return std::nullopt;
}

Affine shear(double x, double y)
{
    return {1, std::tan(y * kDegree), std::tan(x * kDegree), 1, 0, 0};
}

// One function of a list.
class Item {
public:
    Item(std::string_view name, const LengthContext& lengths, const Box& box)
        : name_(name), lengths_(lengths), box_(box)
    {
    }
    bool readValues(TextScanner& scanner);
    std::optional<Affine> transform();
    // Whether only the property of style sheets can hold this, or only the attribute.
    bool hasUnits() const { return hasUnits_; }
    bool hasSpaces() const { return hasSpaces_; }

private:
    bool isNamed(std::string_view name, size_t fewest, size_t most) const
    {
        const bool isName = hasUnits_ ? equalsIgnoringCase(name_, name) : name_ == name;
        return isName && count_ >= fewest && count_ <= most;
    }
    double number(size_t i, double fallback = 0) const
    {
        return i < count_ ? values_[i].number : fallback;
    }
    double factor(size_t i) const
    {
        return values_[i].unit == "%" ? values_[i].number / 100 : values_[i].number;
    }
    double length(size_t i, Axis axis);
    double angle(size_t i);

    std::string_view name_;
    const LengthContext& lengths_;
    const Box& box_;
    Value values_[kMostValues];
    size_t count_ = 0;
    bool valid_ = true;
    bool hasUnits_ = false;
    bool hasSpaces_ = false; // between values, without a comma
};

bool Item::readValues(TextScanner& scanner)
{
    scanner.skipSpace();
    bool comma = false; // before what comes next
    while (count_ < kMostValues && scanner.number(values_[count_].number)) {
        hasSpaces_ = hasSpaces_ || (count_ > 0 && !comma);
        Value& value = values_[count_++];
        value.unit = scanner.character('%') ? "%" : scanner.letters();
        hasUnits_ = hasUnits_ || !value.unit.empty();
        scanner.skipSpace();
        comma = scanner.character(',');
        scanner.skipSpace();
    }
    return count_ > 0 && !comma && scanner.character(')');
}

double Item::length(size_t i, Axis axis)
{
    if (i >= count_) return 0;
    if (values_[i].unit == "%")
        return values_[i].number / 100 * (axis == Axis::X ? box_.width() : box_.height());
    const std::optional<double> size = unitSize(values_[i].unit, lengths_, axis);
    valid_ = valid_ && size;
    return values_[i].number * size.value_or(0);
}

double Item::angle(size_t i)
{
    if (i >= count_) return 0;
    const std::optional<double> degrees = degreesOf(values_[i]);
    valid_ = valid_ && degrees;
    return degrees.value_or(0);
}

std::optional<Affine> Item::transform()
{
    Affine result;
    if (isNamed("translate", 1, 2))
        result = translation(length(0, Axis::X), length(1, Axis::Y));
    else if (isNamed("translateX", 1, 1))
        result = translation(length(0, Axis::X), 0);
    else if (isNamed("translateY", 1, 1))
        result = translation(0, length(0, Axis::Y));
    else if (isNamed("scale", 1, 2))
        result = {factor(0), 0, 0, factor(count_ - 1), 0, 0};
    else if (isNamed("scaleX", 1, 1))
        result = {factor(0), 0, 0, 1, 0, 0};
    else if (isNamed("scaleY", 1, 1))
        result = {1, 0, 0, factor(0), 0, 0};
    else if (isNamed("rotate", 1, 1) || isNamed("rotate", 3, 3))
        result = translation(number(1), number(2)) * rotation(angle(0)) *
                 translation(-number(1), -number(2));
    else if (isNamed("skewX", 1, 1))
        result = shear(angle(0), 0);
    else if (isNamed("skewY", 1, 1))
        result = shear(0, angle(0));
    else if (isNamed("skew", 1, 2))
        result = shear(angle(0), angle(1));
    else if (isNamed("matrix", 6, 6))
        result = {number(0), number(1), number(2), number(3), number(4), number(5)};
    else if (isNamed("translate3d", 3, 3))
        result = translation(length(0, Axis::X), length(1, Axis::Y));
    else if (isNamed("scale3d", 3, 3))
        result = {factor(0), 0, 0, factor(1), 0, 0};
    else if (isNamed("rotateZ", 1, 1))
        result = rotation(angle(0));
    else if (isNamed("rotate3d", 4, 4) && number(0) == 0 && number(1) == 0 && number(2) != 0)
        result = rotation(number(2) > 0 ? angle(3) : -angle(3));
    else
        return std::nullopt;
    if (!valid_) return std::nullopt;
    return result;
}

} // namespace

std::optional<Affine> parseTransform(std::string_view text, const LengthContext& lengths,
                                     const Box& box)
{
    text = trimmed(text);
    Affine result;
    if (text == "none") return result;
    TextScanner scanner(text);
    bool units = false;
    bool spaces = false;
    bool commas = false; // between functions
    const auto skipCommas = [&] {
        for (scanner.skipSpace(); scanner.character(','); scanner.skipSpace())
            commas = true;
    };
    scanner.skipSpace();
    while (!scanner.atEnd()) {
        Item item(scanner.word(), lengths, box);
        scanner.skipSpace();
        if (!scanner.character('(') || !item.readValues(scanner)) return std::nullopt;
        const std::optional<Affine> transform = item.transform();
        if (!transform) return std::nullopt;
        result = result * *transform;
        units = units || item.hasUnits();
        spaces = spaces || item.hasSpaces();
        skipCommas();
    }
    // With units it is a style sheet's, whose commas are not a matter of taste.
    if (units && (spaces || commas)) return std::nullopt;
    return result;
}

std::optional<Affine> parseSingleTransform(std::string_view name, std::string_view value,
                                           const LengthContext& lengths, const Box& box)
{
    if (value.empty() || equalsIgnoringCase(value, "none")) return Affine();
    std::vector<std::string> words;
    forWords(value, [&](std::string_view word) { words.emplace_back(word); });
    const bool turns = name == "rotate";
    if (turns && words.size() > 1) { // an axis before or after the angle
        if (!hasUnits(words.back())) std::rotate(words.begin(), words.begin() + 1, words.end());
        if (words.size() == 2 && words[0] == "z") words.erase(words.begin());
    }
    if (turns && !hasUnits(words.back()) && words.back() != "0") return std::nullopt;
    std::string function(name);
    if (words.size() > (turns ? 1 : 2)) function += "3d";
    for (size_t i = 0; i < words.size(); ++i)
        function += (i == 0 ? "(" : ",") + words[i];
    return parseTransform(function + ")", lengths, box);
}

std::optional<Point> parseTransformOrigin(std::string_view text, const LengthContext& lengths,
                                          const Box& box)
{
    double x = box.left;
    double y = box.top;
    std::string_view words[3] = {"0", "0", "0"};
    size_t count = 0;
    forWords(text, [&](std::string_view word) {
        if (count < 3) words[count] = word;
        ++count;
    });
    if (count == 0) return Point{x, y};
    if (count > 3) return std::nullopt;
    if (count == 1) words[1] = "center";
    if (words[0] == "top" || words[0] == "bottom" || words[1] == "left" || words[1] == "right")
        std::swap(words[0], words[1]);
    const auto place = [&](std::string_view word, double size, Axis axis) -> std::optional<double> {
        if (word == "left" || word == "top") return 0;
        if (word == "center") return size / 2;
        if (word == "right" || word == "bottom") return size;
        const Viewport viewport = lengths.viewport.sized(box.width(), box.height());
        return findLength(word, {viewport, lengths.fontSize}, axis);
    };
    const std::optional<double> dx = place(words[0], box.width(), Axis::X);
    const std::optional<double> dy = place(words[1], box.height(), Axis::Y);
    if (!dx || !dy) return std::nullopt;
    return Point{x + *dx, y + *dy};
}

std::optional<Affine> parseTransformAttribute(std::string_view text, const LengthContext& lengths)
{
    if (hasUnits(text)) return std::nullopt;
    return parseTransform(text, lengths);
}

bool hasUnits(std::string_view transform)
{
    TextScanner scanner(transform);
    while (!scanner.atEnd()) {
        double number = 0;
        if (scanner.number(number)) {
            if (scanner.peek() == '%' || !scanner.letters().empty()) return true;
        } else if (scanner.word().empty()) {
            scanner.skip(1);
        }
    }
    return false;
}

} // namespace Svg
} // namespace KAVO
