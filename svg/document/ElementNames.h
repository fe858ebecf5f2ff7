// SPDX-License-Identifier: MIT
// Kinds of elements by their names.
#pragma once

#include <string_view>

namespace KAVO {
namespace Svg {

inline bool isAnimation(std::string_view name)
{
    return name == "animate" || name == "animateColor" || name == "animateMotion" ||
           name == "animateTransform" || name == "set";
}

} // namespace Svg
} // namespace KAVO
