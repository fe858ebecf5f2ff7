// SPDX-License-Identifier: MIT
// How a rectangle of user space is fitted into a viewport.
#pragma once

#include "svg/geometry/Affine.h"

#include <optional>

namespace KAVO {
namespace Svg {

// A viewBox attribute without width or height, in which nothing is drawn.
bool isEmptyViewBox(const char* text);

// A viewBox attribute; nothing when it is empty or malformed.
std::optional<Box> parseViewBox(const char* text);

// Maps the box into a viewport of the given size at the origin by a preserveAspectRatio attribute.
Affine fitViewBox(const char* preserveAspectRatio, const Box& box, double width, double height);

// Whether the attribute asks for a box that is cut where the viewport ends.
bool slices(const char* preserveAspectRatio);

} // namespace Svg
} // namespace KAVO
