// SPDX-License-Identifier: MIT
// Colours as SVG and CSS write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace KAVO {
namespace Svg {

// #rgb, #rgba, #rrggbb, #rrggbbaa, rgb(), rgba(), hsl(), hsla(), hwb(), lab(), lch(), oklab(),
// oklch() and color() of the spaces around sRGB, with commas or with spaces and a slash, numbers or
// percentages; what sRGB cannot show is clamped to it, channel by channel; the colour keywords and
// transparent in any case, and currentColor, which is current. What follows the colour is left in
// rest, or must be nothing but an icc-color() when rest is null. The result is 0xAArrggbb, not
// premultiplied.
std::optional<uint32_t> findColour(std::string_view text, uint32_t current,
                                   std::string_view* rest = nullptr);

// The colour with its alpha multiplied by the opacity, 0 to 1.
uint32_t withOpacity(uint32_t argb, double opacity);

} // namespace Svg
} // namespace KAVO
