// SPDX-License-Identifier: MIT
#include "svg/values/BlendModes.h"

#include <algorithm>
#include <iterator>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

MMBlendMode blendModeOf(std::string_view name)
{
    static constexpr std::string_view kNames[] = {
        "normal",      "multiply",   "screen",     "overlay",    "darken",     "lighten",
        "color-dodge", "color-burn", "hard-light", "soft-light", "difference", "exclusion",
        "hue",         "saturation", "color",      "luminosity"};
    if (name == "plus-lighter") return kBlendPlus;
    const auto found = std::find(std::begin(kNames), std::end(kNames), name);
    return found == std::end(kNames)
               ? kBlendNormal
               : static_cast<MMBlendMode>(kBlendNormal + (found - std::begin(kNames)));
}

} // namespace Svg
} // namespace KAVO
