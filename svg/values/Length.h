// SPDX-License-Identifier: MIT
// Lengths with their units.
#pragma once

#include <cmath>
#include <optional>
#include <string_view>
#include <vector>

namespace KAVO {
namespace Svg {

// What percentages and the units of the window and of the root refer to, in user units.
struct Viewport {
    double width = 0;
    double height = 0;
    double windowWidth = 0; // of the whole drawing
    double windowHeight = 0;
    double rootFontSize = 16;
    // The same window with another size to refer to.
    Viewport sized(double w, double h) const
    {
        return {w, h, windowWidth, windowHeight, rootFontSize};
    }
    double diagonal() const { return std::hypot(width, height) / std::sqrt(2.0); }
};

enum class Axis { X, Y, Diagonal };

struct LengthContext {
    const Viewport& viewport;
    double fontSize = 16;
};

// A number with an optional unit, in user units; fallback when the text is none, or has a unit that
// there is not.
double parseLength(std::string_view text, const LengthContext& context, Axis axis, double fallback);

// The same, or nothing.
std::optional<double> findLength(std::string_view text, const LengthContext& context, Axis axis);
// The same of a size: nothing also when it is negative.
std::optional<double> findSize(std::string_view text, const LengthContext& context, Axis axis);

// The size of a unit in user units: px, pt, em, vw and so on, in any case; % of the axis. Nothing
// for a name that is no unit.
std::optional<double> unitSize(std::string_view unit, const LengthContext& context, Axis axis);

// Lengths between separators; nothing when one of them is none.
std::optional<std::vector<double>> parseLengths(std::string_view text, const LengthContext& context,
                                                Axis axis);

} // namespace Svg
} // namespace KAVO
