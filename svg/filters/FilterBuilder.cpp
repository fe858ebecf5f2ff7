// SPDX-License-Identifier: MIT
#include "svg/filters/FilterBuilder.h"

#include "svg/values/TextScanner.h"

namespace KAVO {
namespace Svg {

FilterBuilder::Result FilterBuilder::source(const Box& region)
{
    if (graph_) return add(makeMerge(), {graph_->last()}, region, false);
    graph_.emplace(target_.areaOf(region));
    return {FilterGraph::kSource, region};
}

FilterBuilder::Result FilterBuilder::add(EffectPointer effect, std::vector<size_t> inputs,
                                         const Box& region, bool linear)
{
    const size_t step =
        graph_->add({std::move(effect), std::move(inputs), target_.areaOf(region), linear});
    return {step, region};
}

FilterBuilder::Result FilterBuilder::addShadow(const Result& input, EffectPointer blur,
                                               EffectPointer offset, uint32_t colour,
                                               const Box& region, bool linear)
{
    const auto then = [&](EffectPointer effect, std::vector<size_t> inputs) {
        return add(std::move(effect), std::move(inputs), kEverywhere, linear).step;
    };
    const size_t alpha = then(makeAlpha(), {input.step});
    const size_t shape = then(std::move(offset), {then(std::move(blur), {alpha})});
    const size_t shadow =
        then(makeComposite(CompositeOperator::In), {then(makeFlood(colour), {}), shape});
    return add(makeMerge(), {shadow, input.step}, region, linear);
}

FilterOutcome readFilters(std::string_view value, FilterBuilder& builder)
{
    for (value = trimmed(value); !value.empty();) {
        const size_t open = value.find('(');
        const size_t length = open == value.npos ? open : findOutside(value.substr(open + 1), ')');
        if (length == value.npos) return builder.fail("malformed filter");
        const std::string_view name = value.substr(0, open);
        FilterOutcome outcome = FilterOutcome::Drawn;
        if (name == "url") {
            const pugi::xml_node filter =
                builder.target().document.find(referenceIn(value.substr(0, open + length + 2)));
            if (filter.name() != std::string_view("filter"))
                return builder.fail("filter that is not there");
            outcome = readFilterElement(filter, builder);
        } else {
            outcome = readFilterFunction(name, value.substr(open + 1, length), builder);
        }
        if (outcome != FilterOutcome::Drawn) return outcome;
        value = trimmed(value.substr(open + length + 2));
    }
    return FilterOutcome::Drawn;
}

} // namespace Svg
} // namespace KAVO
