// SPDX-License-Identifier: MIT
#include "graphics2d/strokes/GatheredOutlines.h"

#include "graphics2d/raster/Rasteriser.h"

#include <algorithm>
#include <utility>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kFirstRoom = 256; // points

} // namespace

GatheredOutlines::GatheredOutlines(MMContext2D& context, uint32_t outlines)
    : context_(context), capacity_(kFirstRoom), ends_(context.scratchStack, outlines),
      points_(context.scratchStack, kFirstRoom)
{
}

void GatheredOutlines::beginStroke()
{
    countBefore_ = count_;
}

void GatheredOutlines::add(const MMPoint2D* points, uint32_t count)
{
    const uint64_t used = wanted_;
    wanted_ += count;
    if (!hasStroke() || !points_) return;
    std::copy(points, points + count, points_.data() + used);
    ends_[count_++] = static_cast<uint32_t>(wanted_);
}

bool GatheredOutlines::grow()
{
    const uint64_t grown = std::max<uint64_t>(wanted_, uint64_t{capacity_} * 2);
    capacity_ = static_cast<uint32_t>(std::min<uint64_t>(grown, UINT32_MAX));
    count_ = countBefore_;
    wanted_ = count_ != 0 ? ends_[count_ - 1] : 0;
    return points_ && points_.resize(capacity_);
}

bool GatheredOutlines::fill()
{
    const uint16_t before = std::exchange(context_.outOfMemory, uint16_t{0});
    fillContours(context_, {points_.data(), ends_.data(), count_}, kFillNonZero,
                 ThinShapes::kExact);
    const bool done = context_.outOfMemory == 0;
    context_.outOfMemory = before;
    return done;
}

} // namespace Graphics2D
} // namespace KAVO
