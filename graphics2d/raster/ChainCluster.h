// SPDX-License-Identifier: MIT
// Chains with vertices inside a row that may cross each other, settled together slab by slab.
// Internal.
#pragma once

#include "graphics2d/raster/ActiveEdges.h"
#include "graphics2d/raster/SlabFill.h"

namespace KAVO {
namespace Graphics2D {

// Adds what lies inside between two levels of a row, 1/16 of a row or the whole of it apart, given
// the winding number left of all chains. Takes the chains down past the upper level.
//
// The slabs are cut at the chains' vertices. Vertices at more than 16 levels take sixteen equal
// parts of the row instead, each cut again; where even such a part has too many, the chains are
// taken in the order of their middles. So no input makes a row cost more than 272 slabs.
void addChainCluster(SlabFill& slabs, const VertexRing& ring, Chain* chains, uint32_t count,
                     int32_t winding, Fixed from, Fixed to);

} // namespace Graphics2D
} // namespace KAVO
