// SPDX-License-Identifier: MIT
// A chain of edges from a local minimum of y down to the next local maximum. Internal.
#pragma once

#include "graphics2d/raster/EdgeLine.h"
#include "graphics2d/raster/VertexRings.h"

namespace KAVO {
namespace Graphics2D {

// From every local minimum two chains run down, one each way round its ring. A forward chain adds 1
// to the winding number of what lies right of it, a backward one takes 1 away.
struct Chain {
    EdgeLine line;   // the edge that the chain is on
    uint32_t vertex; // ring index of the line's lower end
    int32_t winding; // 1 or -1, also the direction round the ring

    // Moves to the next edge down. False at the end of the chain.
    bool step(const VertexRings& rings);

    // Moves to the first edge that reaches below the level. False when the chain ends before.
    bool stepPast(const VertexRings& rings, Fixed level)
    {
        while (line.endY <= level)
            if (!step(rings)) return false;
        return true;
    }

    // The same, and down to the level.
    bool descend(const VertexRings& rings, Fixed level);
};

} // namespace Graphics2D
} // namespace KAVO
