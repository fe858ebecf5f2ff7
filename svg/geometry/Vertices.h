// SPDX-License-Identifier: MIT
// Where markers stand on a path, and which way they face.
#pragma once

#include "svg/geometry/Outline.h"

#include <vector>

namespace KAVO {
namespace Svg {

struct Vertex {
    Point place;
    double direction = 0; // degrees: of the path, at corners halfway between in and out
};

// The vertices of an outline in order; the first and the last are those of start and end markers.
// Pieces without length take the direction of those beside them.
std::vector<Vertex> verticesOf(const Outline& outline);

} // namespace Svg
} // namespace KAVO
