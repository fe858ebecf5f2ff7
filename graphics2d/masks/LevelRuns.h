// SPDX-License-Identifier: MIT
// Where the levels of a mask change. Internal.
#pragma once

#include "graphics2d/Level.h"

#include <cstdint>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_NARROW_LEVEL {

// The end of the columns from `from` on, before `end`, that all have the level.
int32_t endOfLevel(const uint8_t* levels, int32_t from, int32_t end, uint8_t level);

} // namespace MM2D_NARROW_LEVEL
} // namespace Graphics2D
} // namespace KAVO
