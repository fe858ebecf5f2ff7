// SPDX-License-Identifier: MIT
// The straight edges of a path, for walking along them by distance. Internal.
#pragma once

#include "math/MMPoint2D.h"

namespace KAVO {
namespace Graphics2D {

// An edge whose length fits 16.16.
struct PathEdge {
    MMPoint2D start;
    MMPoint2D end;
    Fixed length;

    // The edge from one point toward another, or the first part of it: only coordinates at opposite
    // ends of the number range are too far apart for one edge. They make a few edges at most.
    static PathEdge toward(const MMPoint2D& from, const MMPoint2D& to);

    MMPoint2D vector() const { return {end.x - start.x, end.y - start.y}; }

    // A unit vector, each component cut to 16 fraction bits; the zero vector for an edge without
    // length.
    MMPoint2D direction() const;
};

} // namespace Graphics2D
} // namespace KAVO
