// SPDX-License-Identifier: MIT
// From the colour spaces of CSS to sRGB.
#pragma once

#include <array>
#include <string_view>

namespace KAVO {
namespace Svg {

// Red, green and blue, encoded as sRGB has it: 0 to 1 for what it can show, beyond for the rest.
using Rgb = std::array<double, 3>;

// Lightness 0 to 100, and the two axes; the white point is D50.
Rgb labToSrgb(double lightness, double a, double b);

// Lightness 0 to 1, and the two axes.
Rgb oklabToSrgb(double lightness, double a, double b);

// Of the spaces of color(): srgb, srgb-linear, display-p3. False for others.
bool spaceToSrgb(std::string_view space, const Rgb& components, Rgb& result);

} // namespace Svg
} // namespace KAVO
