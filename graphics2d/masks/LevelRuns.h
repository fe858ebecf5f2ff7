// SPDX-License-Identifier: MIT
// Where the levels of a mask change. Internal.
#pragma once

#include <cstdint>

namespace KAVO {
namespace Graphics2D {

// The end of the columns from `from` on, before `end`, that all have the level.
int32_t endOfLevel(const uint8_t* levels, int32_t from, int32_t end, uint8_t level);

// The end of the columns from `from` on before eight that are all hidden or all visible. The first
// is neither.
int32_t endOfMixture(const uint8_t* levels, int32_t from, int32_t end);

} // namespace Graphics2D
} // namespace KAVO
