// SPDX-License-Identifier: MIT
// How a rectangle of user space is fitted into a viewport.
#pragma once

#include "svg/geometry/Affine.h"
#include "svg/values/Length.h"

#include <optional>
#include <string_view>

namespace KAVO {
namespace Svg {

// A viewBox attribute without width or height, in which nothing is drawn.
bool isEmptyViewBox(const char* text);

// A viewBox attribute; nothing when it is empty or malformed.
std::optional<Box> parseViewBox(const char* text);

// Maps the box into a viewport of the given size at the origin by a preserveAspectRatio attribute.
Affine fitViewBox(const char* preserveAspectRatio, const Box& box, double width, double height);

// What the property clip leaves of a viewport's rectangle: "rect(top, right, bottom, left)", all
// from its top left corner on, or auto for a side. The whole of it when the value is none of these.
Box clippedViewport(const Box& box, std::string_view clip, const LengthContext& lengths);

// Whether the attribute asks for a box that is cut where the viewport ends.
bool slices(const char* preserveAspectRatio);

} // namespace Svg
} // namespace KAVO
