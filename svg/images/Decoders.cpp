// SPDX-License-Identifier: MIT
#include "svg/images/Decoders.h"

namespace KAVO {
namespace Svg {

std::string_view kindOf(std::string_view bytes)
{
    const auto starts = [&](std::string_view with) { return bytes.substr(0, with.size()) == with; };
    if (starts("\x89PNG\r\n\x1A\n")) return "png";
    if (starts("\xFF\xD8\xFF")) return "jpeg";
    if (starts("GIF8")) return "gif";
    if (starts("RIFF") && bytes.size() > 12 && bytes.substr(8, 4) == "WEBP") return "webp";
    // A drawing: XML, also of 16 bits a character, or compressed.
    if (starts("\x1F\x8B") || starts("\xFF\xFE") || starts("\xFE\xFF")) return "svg";
    const size_t first = bytes.find_first_not_of("\xEF\xBB\xBF \t\r\n");
    return first != bytes.npos && bytes[first] == '<' ? "svg" : "";
}

} // namespace Svg
} // namespace KAVO
