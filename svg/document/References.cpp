// SPDX-License-Identifier: MIT
#include "svg/document/References.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

namespace {

// Of one kind, or both gradients.
bool takesFrom(pugi::xml_node node, pugi::xml_node other)
{
    const auto isGradient = [](pugi::xml_node n) {
        return n.name() == std::string_view("linearGradient") ||
               n.name() == std::string_view("radialGradient");
    };
    return node.name() == std::string_view(other.name()) || (isGradient(node) && isGradient(other));
}

} // namespace

const char* hrefOf(pugi::xml_node node)
{
    const pugi::xml_attribute href = node.attribute("href");
    return href ? href.value() : node.attribute("xlink:href").value();
}

ReferenceChain::ReferenceChain(const SvgDocument& document, pugi::xml_node node)
{
    constexpr size_t kMostReferences = 32;
    while (node && elements_.size() < kMostReferences &&
           (elements_.empty() || takesFrom(elements_.front(), node)) &&
           std::find(elements_.begin(), elements_.end(), node) == elements_.end()) {
        elements_.push_back(node);
        node = document.target(node);
    }
}

const char* ReferenceChain::operator[](const char* name) const
{
    for (const pugi::xml_node element : elements_) {
        if (const pugi::xml_attribute attribute = element.attribute(name)) return attribute.value();
    }
    return "";
}

double ReferenceChain::length(const char* name, const LengthContext& context, Axis axis,
                              double fallback) const
{
    for (const pugi::xml_node element : elements_) {
        if (const auto value = findLength(element.attribute(name).value(), context, axis))
            return *value;
    }
    return fallback;
}

} // namespace Svg
} // namespace KAVO
