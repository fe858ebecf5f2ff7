// SPDX-License-Identifier: MIT
// Colours as SVG writes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// #rgb, #rrggbb, rgb() with numbers or percentages, the colour keywords in any case, and
// currentColor, which is current. An icc-color() after the colour is ignored. The result is
// 0xFFrrggbb.
std::optional<uint32_t> parseColour(std::string_view text, uint32_t current);

// For text the library mixes a paint's pixel into transparent black, which weighs its alpha by
// itself, and then lays the result over the background. This is the pixel that comes out as the
// given one.
uint32_t forGlyphs(uint32_t argb);
