// SPDX-License-Identifier: MIT
#include "svg/style/Siblings.h"

#include <string_view>

namespace KAVO {
namespace Svg {

const SiblingPlace& Siblings::placeOf(pugi::xml_node element)
{
    const auto known = places_.find(element.hash_value());
    if (known != places_.end()) return known->second;

    uint32_t count = 0;
    std::unordered_map<std::string_view, uint32_t> ofType;
    const auto isElement = [](pugi::xml_node n) { return n.type() == pugi::node_element; };
    for (const pugi::xml_node sibling : element.parent().children()) {
        if (!isElement(sibling)) continue;
        SiblingPlace& place = places_[sibling.hash_value()];
        place.first = ++count;
        place.firstOfType = ++ofType[sibling.name()];
    }
    for (const pugi::xml_node sibling : element.parent().children()) {
        if (!isElement(sibling)) continue;
        SiblingPlace& place = places_[sibling.hash_value()];
        place.last = count + 1 - place.first;
        place.lastOfType = ofType[sibling.name()] + 1 - place.firstOfType;
    }
    return places_[element.hash_value()];
}

} // namespace Svg
} // namespace KAVO
