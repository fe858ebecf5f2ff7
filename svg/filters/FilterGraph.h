// SPDX-License-Identifier: MIT
// The primitives of a filter and what they take from one another.
#pragma once

#include "svg/filters/Effect.h"

#include <optional>

namespace KAVO {
namespace Svg {

struct FilterStep {
    EffectPointer effect;
    std::vector<size_t> inputs; // numbers of earlier steps
    PixelArea region;           // outside of it the result is transparent
    bool linear;                // space of colours that the effect works in
};

// Steps are numbered from 1 on; 0 is the picture of the element.
class FilterGraph {
public:
    static constexpr size_t kSource = 0;

    // With the region that the filter takes of the element.
    explicit FilterGraph(const PixelArea& region);

    size_t add(FilterStep step);
    size_t last() const { return steps_.size() - 1; }

    // Finds out which pixels of each step the visible pixels of the last one need. False when that
    // is more than pictures can have.
    bool plan(const PixelArea& visible);
    const PixelArea& sourceArea() const { return areas_[kSource]; }
    // The same when the source is transparent outside of a part of its area.
    void trim(const PixelArea& source);
    double work() const; // of all steps, in pixels of simple primitives

    // The last step, from a source of that area; nothing when the images that live at the
    // same time would take too much memory.
    std::optional<FilterImage> run(FilterImage source) const;

private:
    std::vector<FilterStep> steps_;
    std::vector<PixelArea> areas_; // that each step fills
};

} // namespace Svg
} // namespace KAVO
