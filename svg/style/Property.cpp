// SPDX-License-Identifier: MIT
#include "svg/style/Property.h"

#include <algorithm>
#include <iterator>

namespace KAVO {
namespace Svg {

namespace {

// In the order of Property, which is alphabetical, for the binary search.
constexpr std::string_view kNames[] = {"alignment-baseline",
                                       "baseline-shift",
                                       "clip",
                                       "clip-path",
                                       "clip-rule",
                                       "color",
                                       "color-interpolation",
                                       "color-interpolation-filters",
                                       "cx",
                                       "cy",
                                       "d",
                                       "direction",
                                       "display",
                                       "dominant-baseline",
                                       "fill",
                                       "fill-opacity",
                                       "fill-rule",
                                       "filter",
                                       "flood-color",
                                       "flood-opacity",
                                       "font-family",
                                       "font-size",
                                       "font-stretch",
                                       "font-style",
                                       "font-variant",
                                       "font-weight",
                                       "height",
                                       "image-rendering",
                                       "isolation",
                                       "letter-spacing",
                                       "lighting-color",
                                       "marker-end",
                                       "marker-mid",
                                       "marker-start",
                                       "mask",
                                       "mask-type",
                                       "mix-blend-mode",
                                       "opacity",
                                       "overflow",
                                       "paint-order",
                                       "r",
                                       "rotate",
                                       "rx",
                                       "ry",
                                       "scale",
                                       "shape-rendering",
                                       "stop-color",
                                       "stop-opacity",
                                       "stroke",
                                       "stroke-dasharray",
                                       "stroke-dashoffset",
                                       "stroke-linecap",
                                       "stroke-linejoin",
                                       "stroke-miterlimit",
                                       "stroke-opacity",
                                       "stroke-width",
                                       "text-anchor",
                                       "text-decoration",
                                       "text-transform",
                                       "transform",
                                       "transform-box",
                                       "transform-origin",
                                       "translate",
                                       "unicode-bidi",
                                       "vector-effect",
                                       "visibility",
                                       "white-space",
                                       "width",
                                       "word-spacing",
                                       "writing-mode",
                                       "x",
                                       "xml:space",
                                       "y"};
static_assert(std::size(kNames) == kPropertyCount);

} // namespace

std::optional<Property> findProperty(std::string_view name)
{
    const auto found = std::lower_bound(std::begin(kNames), std::end(kNames), name);
    if (found == std::end(kNames) || *found != name) return std::nullopt;
    return static_cast<Property>(found - std::begin(kNames));
}

} // namespace Svg
} // namespace KAVO
