// SPDX-License-Identifier: MIT
// Chains with vertices inside a row that may cross each other, settled together. Internal.
#pragma once

#include "graphics2d/raster/RowPlacing.h"
#include "graphics2d/raster/SlabFill.h"

namespace KAVO {
namespace Graphics2D {

// Adds what lies inside among the chains of a cluster, given the winding number left of all of them
// and whether they lie left of all that is visible:
//
// - few chains with few vertices in slabs, cut at the levels of these vertices;
// - others in halves of the height, clustered anew in each, down to 1/16 of a row;
// - and where even such a part holds more than 16 levels, by the middles of the chains in it.
//
// So no input makes a chain cost more than some 272 slabs in a row, and a crowd of small shapes
// costs little more than each of them alone.
void addChains(SlabFill& slabs, RowPlacing& row, const RowPlace* places, uint32_t count,
               int32_t winding, bool isHidden);

// Adds a chain that meets no other in its row.
void addChain(SlabFill& slabs, RowPlacing& row, const RowPlace& place, int32_t winding);

// Adds two chains that begin beside each other, go down on an edge each, and meet along one level,
// as the upright sides of a rectangle do at its lower end. False when they are no such pair.
bool addFlatEnd(SlabFill& slabs, RowPlacing& row, const RowPlace* places, int32_t winding);

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
