// SPDX-License-Identifier: MIT
// The table of a gradient's colours. Internal.
#pragma once

#include "graphics2d/sources/MMGradientSource.h"

namespace KAVO {
namespace Graphics2D {

constexpr int32_t kPlaceBits = 24;
constexpr int32_t kEntryBits = kPlaceBits - 9; // places per entry
static_assert(kSourceRampSteps == 1u << (kPlaceBits - kEntryBits), "the table is 1.0 long");

// Fills ramp and cuts in from at least one stop.
void layOutRamp(MMGradientSource& source, const GradientStops& stops);

} // namespace Graphics2D
} // namespace KAVO
