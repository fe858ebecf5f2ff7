// SPDX-License-Identifier: MIT
// Where markers stand on a path, which way they face, and where its pieces meet.
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

// Where two pieces of some length meet.
struct Joint {
    Point place;
    double in = 0;  // radians: the direction in which the path arrives
    double out = 0; // and in which it goes on
};

std::vector<Joint> jointsOf(const Outline& outline);

} // namespace Svg
} // namespace KAVO
