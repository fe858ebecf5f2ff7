// SPDX-License-Identifier: MIT
// Text elements: their characters, positions and white space.
#pragma once

#include "svg/document/SvgDocument.h"

#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <vector>

namespace KAVO {
namespace Svg {

// One UTF-16 code unit of a text element and what its elements say about it.
struct TextCharacter {
    uint16_t code = 0;
    size_t style = 0;        // index into TextContent::styles
    std::optional<double> x; // where it goes, absolute
    std::optional<double> y;
    std::optional<double> dx; // a shift on top of that
    std::optional<double> dy;
    double rise = 0;              // above the baseline of the whole text
    std::optional<double> rotate; // degrees
    std::optional<size_t> path;   // index into TextContent::paths: it stands on one
};

struct TextContent {
    std::vector<TextCharacter> characters;
    std::vector<Style> styles;
    std::vector<pugi::xml_node> paths; // textPath elements
    bool cut = false;                  // it had more characters than the limit
};

// The characters of a text element with white space collapsed as xml:space says. style is that of
// the element itself.
TextContent readText(const SvgDocument& document, pugi::xml_node node, const Style& style,
                     const Viewport& viewport);

// UTF-8 to UTF-16; malformed bytes become U+FFFD.
std::vector<uint16_t> toUtf16(std::string_view utf8);

} // namespace Svg
} // namespace KAVO
