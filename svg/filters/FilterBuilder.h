// SPDX-License-Identifier: MIT
// The graph of a filter property, as its elements and functions are read one after the other.
#pragma once

#include "svg/filters/FilterGraph.h"
#include "svg/filters/FilterTarget.h"

#include <string>

namespace KAVO {
namespace Svg {

enum class FilterOutcome {
    Drawn,
    Ignored, // the element is drawn without the filter
    NotDrawn // nor is the element
};

class FilterBuilder {
public:
    explicit FilterBuilder(const FilterTarget& target) : target_(target) {}

    // A step with the subregion that it has in user space.
    struct Result {
        size_t step = FilterGraph::kSource;
        Box region;
    };

    const FilterTarget& target() const { return target_; }
    FilterGraph& graph() { return *graph_; }

    // What the next filter takes: what the element draws, or what the filter before made of it, as
    // far as it lies in a region.
    Result source(const Box& region);
    Result add(EffectPointer effect, std::vector<size_t> inputs, const Box& region, bool linear);
    // A shadow below what casts it, of a colour 0xAARRGGBB.
    Result addShadow(const Result& input, EffectPointer blur, EffectPointer offset, uint32_t colour,
                     const Box& region, bool linear);

    // What is not drawn, and where that stands: a null node is the element itself.
    struct Problem {
        std::string what;
        pugi::xml_node node;
    };
    void note(std::string what, pugi::xml_node node)
    {
        problems_.push_back({std::move(what), node});
    }
    FilterOutcome fail(std::string what, pugi::xml_node node = {})
    {
        note(std::move(what), node);
        return FilterOutcome::Ignored;
    }
    const std::vector<Problem>& problems() const { return problems_; }

private:
    const FilterTarget& target_;
    std::optional<FilterGraph> graph_;
    std::vector<Problem> problems_;
};

// The value of a filter property.
FilterOutcome readFilters(std::string_view value, FilterBuilder& builder);
// A filter element.
FilterOutcome readFilterElement(pugi::xml_node filter, FilterBuilder& builder);
// A filter function, without its brackets.
FilterOutcome readFilterFunction(std::string_view name, std::string_view arguments,
                                 FilterBuilder& builder);

} // namespace Svg
} // namespace KAVO
