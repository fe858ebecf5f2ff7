// SPDX-License-Identifier: MIT
// Chains with vertices inside a row that may cross each other, settled together. Internal.
#pragma once

#include "graphics2d/raster/Chain.h"
#include "graphics2d/raster/SlabFill.h"

namespace KAVO {
namespace Graphics2D {

// Adds what lies inside between two levels of a row, given the winding number left of all chains.
// Takes the chains down past the upper level.
//
// Where the chains' extents do not overlap, and all that starts or ends left of the gap cancels,
// the chains on either side are settled apart, cluster by cluster:
//
// - few chains with few vertices in slabs, cut at the levels of these vertices;
// - others in halves of the height, clustered anew in each, down to 1/16 of a row;
// - and where even such a part holds more than 16 levels, by the middles of the chains in it.
//
// So no input makes a chain cost more than some 272 slabs in a row, and a crowd of small shapes
// costs little more than each of them alone.
void addChains(SlabFill& slabs, const VertexRings& rings, Chain* chains, uint32_t count,
               int32_t winding, Fixed from, Fixed to);

// Adds a chain between two levels, as a left (sign 1) or a right (-1) edge of what is inside.
void addAlong(CoverageRow& coverage, const VertexRings& rings, Chain chain, Fixed from, Fixed to,
              int32_t sign);

// Spreads a level over 32 bits, so that sums of such numbers vanish only when the levels cancel.
inline uint32_t mixed(Fixed level)
{
    uint32_t bits = static_cast<uint32_t>(level) + 0x9E3779B9u;
    bits = (bits ^ (bits >> 16)) * 0x85EBCA6Bu;
    bits = (bits ^ (bits >> 13)) * 0xC2B2AE35u;
    return bits ^ (bits >> 16);
}

} // namespace Graphics2D
} // namespace KAVO
