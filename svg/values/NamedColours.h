// SPDX-License-Identifier: MIT
// The colour keywords.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace KAVO {
namespace Svg {

// Opaque, as 0xFFrrggbb; the name is in lower case.
std::optional<uint32_t> findNamedColour(std::string_view name);

} // namespace Svg
} // namespace KAVO
