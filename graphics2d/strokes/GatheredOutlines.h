// SPDX-License-Identifier: MIT
// The outlines of many strokes, kept to be filled as one shape. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "memory/ScratchArray.h"

namespace KAVO {
namespace Graphics2D {

// Where they overlap, a translucent paint is blended once. Those that share no pixel with any other
// are filled by themselves all the same: it costs less. The points lie in scratch memory below
// what strokes take while they are built, so there can be too little room when one is ready: it is
// then forgotten, and has to be built again after grow().
class GatheredOutlines {
public:
    // Room for so many outlines at most, as long as this is the newest scratch memory. Converts to
    // false without it.
    GatheredOutlines(MMContext2D& context, uint32_t outlines);
    explicit operator bool() const { return ends_ && points_; }

    void add(const MMPoint2D* points, uint32_t count);
    // Whether all outlines have been taken.
    bool hasAll() const { return wanted_ <= capacity_; }

    // Makes room for a stroke that lacked it, while nothing newer is in scratch memory; its
    // outlines have to be added again, which does no harm to those that were taken. False without
    // memory; everything is lost then.
    bool grow();

    // Fills all outlines as one shape, with the context's current paint; without memory one by one.
    void fill();

private:
    uint32_t beginOf(uint32_t i) const { return i != 0 ? ends_[i - 1] : 0; }
    uint32_t fillApart();

    MMContext2D& context_;
    uint32_t count_ = 0;
    uint32_t capacity_;   // of points_
    uint64_t wanted_ = 0; // points of all outlines, had there been room
    ScratchArray<uint32_t> ends_;
    ScratchArray<MMPoint2D> points_;
};

} // namespace Graphics2D
} // namespace KAVO
