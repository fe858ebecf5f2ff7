// SPDX-License-Identifier: MIT
// Transform lists.
#pragma once

#include "svg/geometry/Affine.h"
#include "svg/values/Length.h"

#include <string_view>

namespace KAVO {
namespace Svg {

// The transform that the list describes, or nothing when the list is malformed. Beside what the
// attribute knows it may hold what the property of style sheets does: angles and lengths with
// units, percentages of the box, the functions for single axes, and of those for three dimensions
// the ones that stay in the plane.
std::optional<Affine> parseTransform(std::string_view text, const LengthContext& lengths,
                                     const Box& box = {0, 0, 0, 0});

// The same of an attribute's text, which knows no units.
std::optional<Affine> parseTransformAttribute(std::string_view text, const LengthContext& lengths);

// What the value of one of the properties translate, rotate and scale describes: the arguments of
// the function of that name. Nothing when it is malformed or leaves the plane.
std::optional<Affine> parseSingleTransform(std::string_view name, std::string_view value,
                                           const LengthContext& lengths, const Box& box);

// Where the origin of a transform lies in the box: keywords, percentages of it, or lengths. Nothing
// when the text is malformed; the box's corner when it is empty.
std::optional<Point> parseTransformOrigin(std::string_view text, const LengthContext& lengths,
                                          const Box& box);

// Whether a number in the list has a unit, which the attribute does not know.
bool hasUnits(std::string_view transform);

} // namespace Svg
} // namespace KAVO
