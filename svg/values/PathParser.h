// SPDX-License-Identifier: MIT
// The path grammar of the d attribute.
#pragma once

#include "svg/geometry/Outline.h"

#include <optional>
#include <string_view>

namespace KAVO {
namespace Svg {

// Appends what the text describes. After an error the segments before it stand and the result is
// false.
bool parsePath(std::string_view text, Outline& outline);

// The text in "path('...')", the value of the property d; nothing when the value is something else.
std::optional<std::string_view> pathDataIn(std::string_view value);

} // namespace Svg
} // namespace KAVO
