// SPDX-License-Identifier: MIT
// Which of its siblings an element is.
#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <unordered_map>

namespace KAVO {
namespace Svg {

// Elements counted from 1 on, from either end, among all siblings and among those of one name.
struct SiblingPlace {
    uint32_t first = 1;
    uint32_t last = 1;
    uint32_t firstOfType = 1;
    uint32_t lastOfType = 1;
};

// Counts the children of a parent when one of them is asked for and remembers them all, so that
// asking for every one takes no longer than counting once. The tree must not change meanwhile.
class Siblings {
public:
    const SiblingPlace& placeOf(pugi::xml_node element);

private:
    std::unordered_map<size_t, SiblingPlace> places_; // by the hash of the node, which is unique
};

} // namespace Svg
} // namespace KAVO
