// SPDX-License-Identifier: MIT
// The names of blend modes.
#pragma once

#include "graphics2d/layers/MMBlendMode.h"

#include <string_view>

namespace KAVO {
namespace Svg {

// The blend mode of that name; normal for what is none.
Graphics2D::MMBlendMode blendModeOf(std::string_view name);

} // namespace Svg
} // namespace KAVO
