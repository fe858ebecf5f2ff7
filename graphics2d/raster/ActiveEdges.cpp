// SPDX-License-Identifier: MIT
#include "graphics2d/raster/ActiveEdges.h"

#include "graphics2d/raster/NearlySorted.h"
#include "math/FixedInline.h"

namespace KAVO {
namespace Graphics2D {

Fixed RowPlace::xAt(Fixed depth) const
{
    return wrapAdd(topX, fixMulInline(slope, depth));
}

ActiveEdges::ActiveEdges(MMStackContext& stack, const VertexRings& rings)
    : rings_(rings), order_(stack, 2 * rings.minimumCount()),
      block_(stack, MMBucketContext::wordsFor(kActiveChainWords, 2 * rings.minimumCount())),
      pool_(kActiveChainWords), minimum_(rings.firstMinimum())
{
    if (block_) pool_.Borrow(block_.data(), 2 * rings.minimumCount());
}

ActiveEdges::~ActiveEdges()
{
    pool_.Return();
}

void ActiveEdges::sort(uint32_t first, uint32_t count)
{
    sortNearlySorted(begin() + first, count);
}

void ActiveEdges::startAbove(Fixed level)
{
    while (minimum_ != kNoVertex && rings_[minimum_].y < level) {
        startChain(minimum_, -1);
        startChain(minimum_, 1);
        minimum_ = rings_.nextMinimum(minimum_);
    }
}

void ActiveEdges::startChain(uint32_t minimum, int32_t winding)
{
    void* item = pool_.Alloc(); // two slots per minimum: never null
    const uint32_t offset = static_cast<uint32_t>(static_cast<uint32_t*>(item) - pool_.slots);
    // The next search goes on from here, for all slots before are taken.
    pool_.searchStart = offset / (kActiveChainWords + 1) / 32;
    const MMPoint2D& p = rings_[minimum];
    ActiveChain& chain = *static_cast<ActiveChain*>(item);
    chain.line = EdgeLine::at(p);
    chain.vertex = minimum;
    chain.winding = winding;
    chain.ended = false;
    if (!chain.descend(rings_, p.y)) return; // horizontal throughout
    order_[size_++] = {p.x, p.x, p.x, p.x, 0, 0, p.x, offset, winding, false, false, false};
}

} // namespace Graphics2D
} // namespace KAVO
