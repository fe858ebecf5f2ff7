// SPDX-License-Identifier: MIT
#include "svg/filters/FilterGraph.h"

namespace KAVO {
namespace Svg {

namespace {

constexpr double kMostLivingPixels = 1 << 26; // half a gigabyte

} // namespace

FilterGraph::FilterGraph(const PixelArea& region)
{
    steps_.push_back({nullptr, {}, region, false});
}

size_t FilterGraph::add(FilterStep step)
{
    steps_.push_back(std::move(step));
    return last();
}

bool FilterGraph::plan(const PixelArea& visible)
{
    areas_.assign(steps_.size(), PixelArea());
    areas_.back() = visible.common(steps_.back().region);
    for (size_t i = steps_.size(); i-- > 0;) {
        const PixelArea& area = areas_[i];
        if (area.empty()) {
            areas_[i] = {};
            continue;
        }
        if (area.width() > kLargestSide || area.height() > kLargestSide) return false;
        for (const size_t input : steps_[i].inputs) {
            const PixelArea needed = steps_[i].effect->needs(area);
            areas_[input] = areas_[input].around(needed.common(steps_[input].region));
        }
    }
    return true;
}

void FilterGraph::trim(const PixelArea& source)
{
    const auto keep = [&](size_t step, const PixelArea& filled) {
        areas_[step] = areas_[step].common(filled);
        if (areas_[step].empty()) areas_[step] = {};
    };
    keep(kSource, source);
    for (size_t i = 1; i < steps_.size(); ++i) {
        std::vector<PixelArea> inputs;
        for (const size_t input : steps_[i].inputs)
            inputs.push_back(areas_[input]);
        keep(i, steps_[i].effect->fills(inputs, areas_[i]));
    }
}

double FilterGraph::work() const
{
    double sum = areas_[kSource].pixels();
    for (size_t i = 1; i < steps_.size(); ++i)
        sum += areas_[i].pixels() * steps_[i].effect->cost();
    return sum;
}

std::optional<FilterImage> FilterGraph::run(FilterImage source) const
{
    std::vector<size_t> lastUse(steps_.size(), last());
    for (size_t i = 0; i < steps_.size(); ++i)
        for (const size_t input : steps_[i].inputs)
            lastUse[input] = i;

    std::vector<FilterImage> images(steps_.size());
    images[kSource] = std::move(source);
    double living = areas_[kSource].pixels();
    for (size_t i = 1; i < steps_.size(); ++i) {
        const FilterStep& step = steps_[i];
        living += areas_[i].pixels();
        if (living > kMostLivingPixels) return std::nullopt;
        if (!areas_[i].empty()) {
            std::vector<const FilterImage*> inputs;
            for (const size_t input : step.inputs)
                inputs.push_back(&images[input]);
            bool linear = step.linear;
            if (step.effect->keepsColours() && !inputs.empty()) linear = inputs[0]->isLinear();
            for (const size_t input : step.inputs)
                images[input].convert(linear);
            images[i] = FilterImage(areas_[i], linear);
            step.effect->apply(inputs, images[i]);
        }
        for (const size_t input : step.inputs) {
            if (lastUse[input] != i || images[input].area().empty()) continue;
            living -= images[input].area().pixels();
            images[input] = FilterImage();
        }
    }
    return std::move(images.back());
}

} // namespace Svg
} // namespace KAVO
