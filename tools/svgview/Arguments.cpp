// SPDX-License-Identifier: MIT
#include "svgview/Arguments.h"

#include "svg/MMSvgDocument.h"
#include "svgview/View.h"

#include <charconv>

const char kUsage[] =
    "usage: svgview [options] DRAWING.svg\n"
    "  --size WxH        size of the window in pixels\n"
    "  --background C    colour behind the drawing, in SVG's notation (white)\n"
    "  --font FILE       font for all text\n"
    "  --help            print this\n"
    "The wheel zooms about the pointer, dragging pans, and a click prints the id of the element\n"
    "under it. Keys: + and - zoom, arrows pan, 0 fits the drawing into the window, F5 loads it\n"
    "again, as does a change of the file, and q or Escape ends the program.\n";

namespace {

// A side of the window at the front of the text, which is taken off.
bool takeSide(std::string_view& text, int& side)
{
    const auto result = std::from_chars(text.data(), text.data() + text.size(), side);
    text.remove_prefix(static_cast<size_t>(result.ptr - text.data()));
    return result.ec == std::errc() && side > 0 && side <= View::kLargestSide;
}

std::string setSize(std::string_view text, Arguments& arguments)
{
    const std::string problem = "size is not WxH, up to " + std::to_string(View::kLargestSide) +
                                " each: " + std::string(text);
    if (!takeSide(text, arguments.width) || text.empty() || text.front() != 'x') return problem;
    text.remove_prefix(1);
    return takeSide(text, arguments.height) && text.empty() ? "" : problem;
}

std::string setBackground(const std::string& text, Arguments& arguments)
{
    if (!KAVO::Svg::parseColour(text, &arguments.background)) return "unknown colour: " + text;
    return arguments.background >> 24 == 255 ? "" : "a window is not transparent: " + text;
}

std::string setOption(const std::string& option, const std::string& value, Arguments& arguments)
{
    if (value.empty()) return option + " needs a value";
    if (option == "--size") return setSize(value, arguments);
    if (option == "--background") return setBackground(value, arguments);
    arguments.font = value;
    return "";
}

} // namespace

std::string parseArguments(int argc, char** argv, Arguments& arguments)
{
    bool onlyFiles = false;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (onlyFiles || option.size() < 2 || option[0] != '-') {
            if (!arguments.file.empty()) return "shows one drawing at a time";
            arguments.file = option;
        } else if (option == "--") {
            onlyFiles = true;
        } else if (option == "--help") {
            arguments.help = true;
        } else if (option == "--size" || option == "--background" || option == "--font") {
            const std::string value = i + 1 < argc ? argv[++i] : "";
            const std::string problem = setOption(option, value, arguments);
            if (!problem.empty()) return problem;
        } else {
            return "unknown option " + option;
        }
    }
    return arguments.file.empty() && !arguments.help ? "needs a drawing" : "";
}
