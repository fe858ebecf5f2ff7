// SPDX-License-Identifier: MIT
// The path grammar of the d attribute.
#pragma once

#include "svg/geometry/Outline.h"

#include <string_view>

namespace KAVO {
namespace Svg {

// Appends what the text describes. After an error the segments before it stand and the result is
// false.
bool parsePath(std::string_view text, Outline& outline);

} // namespace Svg
} // namespace KAVO
