// SPDX-License-Identifier: MIT
// Corners of strokes whose miters are too long, cut where their limit ends.
#pragma once

#include "svg/geometry/Outline.h"

namespace KAVO {
namespace Svg {

// What a stroke with such corners covers beyond one that bevels them: from each vertex outwards, a
// polygon that ends at half the limit times the width of the stroke, square to the middle of the
// corner. All turn the same way.
Outline clippedMiters(const Outline& outline, double width, double limit);

} // namespace Svg
} // namespace KAVO
