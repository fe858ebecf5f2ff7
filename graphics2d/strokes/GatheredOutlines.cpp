// SPDX-License-Identifier: MIT
#include "graphics2d/strokes/GatheredOutlines.h"

#include "graphics2d/raster/LinkedSort.h"
#include "graphics2d/raster/PolygonBounds.h"
#include "graphics2d/raster/Rasteriser.h"

#include <algorithm>
#include <utility>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kFirstRoom = 256; // points

// The pixels that an outline can touch, ends included.
struct TouchedBox {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
    uint32_t next; // the box that follows in the order of the tops
    bool meetsOthers;
};

// Whatever the pixel grid.
TouchedBox touchedBy(const BoundsUnion& bounds)
{
    return {fixFloor(bounds.minX),
            fixFloor(bounds.minY),
            fixFloor(bounds.maxX) + 1,
            fixFloor(bounds.maxY) + 1,
            kNoLink,
            false};
}

// Marks the boxes that overlap, or all when to find out would take long.
void markMeetings(TouchedBox* boxes, uint32_t count)
{
    if (count == 0) return;
    const auto isAbove = [](const TouchedBox& a, const TouchedBox& b) { return a.top < b.top; };
    uint64_t budget = uint64_t{64} * count; // comparisons
    for (uint32_t i = sortLinked<&TouchedBox::next>(boxes, 0, count, isAbove); i != kNoLink;) {
        TouchedBox& box = boxes[i];
        i = box.next;
        for (uint32_t j = i; j != kNoLink && boxes[j].top <= box.bottom; j = boxes[j].next) {
            if (budget-- == 0) {
                for (uint32_t k = 0; k < count; ++k)
                    boxes[k].meetsOthers = true;
                return;
            }
            if (boxes[j].left > box.right || box.left > boxes[j].right) continue;
            box.meetsOthers = boxes[j].meetsOthers = true;
        }
    }
}

} // namespace

GatheredOutlines::GatheredOutlines(MMContext2D& context, uint32_t outlines)
    : context_(context), capacity_(kFirstRoom), ends_(context.scratchStack, outlines),
      points_(context.scratchStack, kFirstRoom)
{
}

void GatheredOutlines::add(const MMPoint2D* points, uint32_t count)
{
    if (count == 0) return;
    const uint64_t used = wanted_;
    wanted_ += count;
    if (!hasAll() || !points_) return;
    std::copy(points, points + count, points_.data() + used);
    ends_[count_++] = static_cast<uint32_t>(wanted_);
}

bool GatheredOutlines::grow()
{
    const uint64_t grown = std::max<uint64_t>(wanted_, uint64_t{capacity_} * 2);
    capacity_ = static_cast<uint32_t>(std::min<uint64_t>(grown, UINT32_MAX));
    wanted_ = count_ != 0 ? ends_[count_ - 1] : 0;
    return points_ && points_.resize(capacity_);
}

// Fills the outlines that meet no other, and leaves a single point of each. Returns how many are
// left.
uint32_t GatheredOutlines::fillApart()
{
    ScratchArray<TouchedBox> boxes(context_.scratchStack, count_);
    if (!boxes) return count_;
    for (uint32_t i = 0; i < count_; ++i) {
        boxes[i] = touchedBy(boundsOfPolygon(&points_[beginOf(i)], ends_[i] - beginOf(i)));
        if (i + 1 < count_) boxes[i].next = i + 1;
    }
    markMeetings(boxes.data(), count_);
    uint32_t left = count_;
    for (uint32_t i = 0; i < count_; ++i) {
        if (boxes[i].meetsOthers) continue;
        MMPoint2D* const points = &points_[beginOf(i)];
        const uint32_t count = ends_[i] - beginOf(i);
        fillOutline(context_, points, count);
        std::fill_n(points, count, points[0]);
        --left;
    }
    return left;
}

void GatheredOutlines::fill()
{
    if (fillApart() == 0) return;
    const uint16_t before = std::exchange(context_.outOfMemory, uint16_t{0});
    fillContours(context_, {points_.data(), ends_.data(), count_}, kFillNonZero,
                 ThinShapes::kExact);
    const bool failed = context_.outOfMemory != 0;
    context_.outOfMemory = before;
    for (uint32_t i = 0; failed && i < count_; ++i)
        fillOutline(context_, &points_[beginOf(i)], ends_[i] - beginOf(i));
}

} // namespace Graphics2D
} // namespace KAVO
