// SPDX-License-Identifier: MIT
// What the document type declaration of a drawing declares: entities, and values of attributes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace KAVO {
namespace Svg {

// Replaces references to the entities that the document type declaration defines by their texts,
// also inside one another. Those that XML knows by itself, and unknown ones, stay. False when the
// text grows beyond mostBytes.
bool expandEntities(std::string& text, uint64_t mostBytes);

// What an attribute is where an element does not give it.
struct AttributeDefault {
    std::string element;
    std::string attribute;
    std::string value;
};
std::vector<AttributeDefault> readAttributeDefaults(const std::string& text);

} // namespace Svg
} // namespace KAVO
