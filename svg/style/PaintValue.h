// SPDX-License-Identifier: MIT
// The values of fill and stroke.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace KAVO {
namespace Svg {

// What to fill or stroke with.
struct PaintValue {
    enum Kind { None, Colour, Server, ContextFill, ContextStroke };
    Kind kind = None;
    uint32_t colour = 0xFF000000; // of a Server: to be used when there is no such server
    bool hasFallback = false;     // of a Server: the colour was given
    bool fallbackNone = false;    // of a Server: none was given instead
    std::string_view server;      // id of a gradient or pattern
};

// Nothing when the text is no paint. currentColour is what currentColor stands for.
std::optional<PaintValue> findPaint(std::string_view text, uint32_t currentColour);

// Whether the text begins with a url().
bool isUrl(std::string_view text);

// The id in "url(#id)"; empty when the text is no such reference. rest gets what follows, without
// white space around it.
std::string_view referenceIn(std::string_view text, std::string_view* rest = nullptr);

} // namespace Svg
} // namespace KAVO
