// SPDX-License-Identifier: MIT
// Transform lists.
#pragma once

#include "svg/geometry/Affine.h"
#include "svg/values/Length.h"

#include <string_view>

namespace KAVO {
namespace Svg {

// The transform that the list describes, or nothing when the list is malformed. Beside what the
// attribute knows it may hold what the property of style sheets does in two dimensions: angles and
// lengths with units, percentages of the box, and the functions for single axes.
std::optional<Affine> parseTransform(std::string_view text, const LengthContext& lengths,
                                     const Box& box = {0, 0, 0, 0});

} // namespace Svg
} // namespace KAVO
