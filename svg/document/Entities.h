// SPDX-License-Identifier: MIT
// Entities that a document declares for itself.
#pragma once

#include <cstdint>
#include <string>

namespace KAVO {
namespace Svg {

// Replaces references to the entities that the document type declaration defines by their texts,
// also inside one another. Those that XML knows by itself, and unknown ones, stay. False when the
// text grows beyond mostBytes.
bool expandEntities(std::string& text, uint64_t mostBytes);

} // namespace Svg
} // namespace KAVO
