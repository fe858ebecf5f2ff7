// SPDX-License-Identifier: MIT
#include "svg2png/TransformParser.h"

#include "math/Matrix2D.h"
#include "svg2png/PathEncoder.h"
#include "svg2png/TextScanner.h"

#include <vector>

using namespace KAVO;

namespace {

struct ItemType {
    std::string_view name;
    Matrix2D::TransformTypes type;
};

constexpr ItemType kItemTypes[] = {
    {"translate", Matrix2D::Translate}, {"scale", Matrix2D::Scale}, {"rotate", Matrix2D::Rotate},
    {"skewX", Matrix2D::SkewX},         {"skewY", Matrix2D::SkewY}, {"matrix", Matrix2D::Matrix}};

constexpr size_t kMostValues = 6;

// Brings the values from first on into the best part of the 16.16 range by a power of two, which is
// returned: as many significant bits as fit, and no overflow.
double magnify(std::vector<double>& values, size_t first, size_t last)
{
    double largest = 0;
    for (size_t i = first; i < last; ++i)
        largest = std::max(largest, std::fabs(values[i]));
    if (largest == 0) return 1;
    int exponent = 0;
    std::frexp(largest, &exponent);
    const double factor = std::ldexp(1.0, 13 - exponent); // largest becomes 4096 to 8192
    for (size_t i = first; i < last; ++i)
        values[i] *= factor;
    return factor;
}

std::optional<Affine> composeItem(Matrix2D::TransformTypes type, std::vector<double> values)
{
    const size_t count = values.size();
    double linearFactor = 1;
    double offsetFactor = 1;
    switch (type) {
    case Matrix2D::Translate:
        offsetFactor = magnify(values, 0, count);
        break;
    case Matrix2D::Scale:
        if (std::find(values.begin(), values.end(), 0.0) != values.end())
            return Affine{0, 0, 0, 0, 0, 0}; // nothing is left of what it applies to
        linearFactor = magnify(values, 0, count);
        break;
    case Matrix2D::Rotate:
        values[0] = std::fmod(values[0], 360.0);
        offsetFactor = magnify(values, 1, count);
        break;
    case Matrix2D::Matrix:
        if (count != kMostValues) return std::nullopt;
        linearFactor = magnify(values, 0, 4);
        offsetFactor = magnify(values, 4, count);
        break;
    default:
        values[0] = std::fmod(values[0], 360.0);
        break;
    }

    Fixed fixed[kMostValues] = {};
    for (size_t i = 0; i < count; ++i)
        fixed[i] = toFixed(values[i]);
    Matrix2D m = kIdentityMatrix;
    if (m.compose(type, fixed, static_cast<uint32_t>(count)) != 0) return std::nullopt;
    return Affine{toDouble(m.a) / linearFactor, toDouble(m.b) / linearFactor,
                  toDouble(m.c) / linearFactor, toDouble(m.d) / linearFactor,
                  toDouble(m.e) / offsetFactor, toDouble(m.f) / offsetFactor};
}

std::optional<Affine> parseItem(TextScanner& scanner)
{
    const std::string_view name = scanner.word();
    const ItemType* found = nullptr;
    for (const ItemType& item : kItemTypes) {
        if (item.name == name) found = &item;
    }
    scanner.skipSpace();
    if (!found || !scanner.character('(')) return std::nullopt;
    std::vector<double> values;
    double value = 0;
    scanner.skipSpace();
    while (values.size() < kMostValues && scanner.number(value)) {
        values.push_back(value);
        scanner.skipSeparator();
    }
    if (values.empty() || !scanner.character(')')) return std::nullopt;
    return composeItem(found->type, values);
}

} // namespace

std::optional<Affine> parseTransform(std::string_view text)
{
    Affine result;
    TextScanner scanner(text);
    scanner.skipSeparator();
    while (!scanner.atEnd()) {
        const std::optional<Affine> item = parseItem(scanner);
        if (!item) return std::nullopt;
        result = result * *item;
        scanner.skipSeparator();
    }
    return result;
}
