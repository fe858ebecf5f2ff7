// Colours as SVG writes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// #rgb, #rrggbb, rgb() with numbers or percentages, the colour keywords in any case, and
// currentColor, which is current. An icc-color() after the colour is ignored. The result is
// 0xFFrrggbb.
std::optional<uint32_t> parseColour(std::string_view text, uint32_t current);
