// SPDX-License-Identifier: MIT
#include "svg2png/Arguments.h"

#include "svg/MMSvgDocument.h"

#include <charconv>
#include <cmath>
#include <map>

const char kUsage[] =
    "usage: svg2png [options] INPUT.svg OUTPUT.png\n"
    "       svg2png [options] INPUT.svg... --out FOLDER\n"
    "INPUT.svg may be -, for standard input.\n"
    "  --out FOLDER      write each picture into the folder, named after its drawing\n"
    "  --size N          longer side of the picture in pixels\n"
    "  --size WxH        size of the picture, the drawing fitted into it\n"
    "  --scale S         pixels per user unit (1)\n"
    "  --background C    colour behind the drawing, in SVG's notation (transparent)\n"
    "  --font FILE       font for all text\n"
    "  --language LIST   languages for systemLanguage, separated by commas (en)\n"
    "  --no-antialias    draw pixels wholly or not at all\n"
    "  --strict          fail when something could not be drawn\n"
    "  --stats           print time, scratch memory and bounds of what was drawn\n"
    "  --help            print this\n";

namespace {

// A positive, finite number at the front of the text, which is taken off.
bool takeNumber(std::string_view& text, double& value)
{
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    text.remove_prefix(static_cast<size_t>(result.ptr - text.data()));
    return result.ec == std::errc() && std::isfinite(value) && value > 0;
}

std::string setSize(std::string_view text, Arguments& arguments)
{
    const std::string problem = "size is not N or WxH: " + std::string(text);
    if (!takeNumber(text, arguments.width)) return problem;
    if (text.empty()) return "";
    if (text.front() != 'x') return problem;
    text.remove_prefix(1);
    return takeNumber(text, arguments.height) && text.empty() ? "" : problem;
}

std::string setScale(std::string_view text, Arguments& arguments)
{
    const std::string problem = "scale is not a positive number: " + std::string(text);
    return takeNumber(text, arguments.scale) && text.empty() ? "" : problem;
}

std::string setBackground(const std::string& text, Arguments& arguments)
{
    return KAVO::Svg::parseColour(text, &arguments.background) ? "" : "unknown colour: " + text;
}

void setLanguages(std::string_view text, Arguments& arguments)
{
    arguments.languages.clear();
    while (!text.empty()) {
        const size_t comma = text.find(',');
        arguments.languages.emplace_back(text.substr(0, comma));
        text = comma == text.npos ? std::string_view() : text.substr(comma + 1);
    }
}

// The name of the picture of a drawing.
std::string pictureName(const std::string& folder, const std::string& input)
{
    const size_t slash = input.rfind('/');
    std::string name = slash == input.npos ? input : input.substr(slash + 1);
    const size_t dot = name.rfind('.');
    if (dot != name.npos && dot > 0) name.resize(dot);
    return folder + "/" + name + ".png";
}

// What one job would do to the files of another, or to its own.
std::string findClash(const std::vector<Arguments::Job>& jobs)
{
    std::map<std::string, std::string> inputs; // by output
    for (const Arguments::Job& job : jobs) {
        if (job.output == job.input) return "the picture would replace its drawing: " + job.input;
        const auto [other, isNew] = inputs.emplace(job.output, job.input);
        if (!isNew) return other->second + " and " + job.input + " would both become " + job.output;
    }
    return "";
}

} // namespace

std::string parseArguments(int argc, char** argv, Arguments& arguments)
{
    std::vector<std::string> files;
    std::string folder;
    bool onlyFiles = false;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (onlyFiles || option.size() < 2 || option[0] != '-') {
            files.push_back(option);
            continue;
        }
        if (option == "--") {
            onlyFiles = true;
            continue;
        }
        if (option == "--no-antialias")
            arguments.antiAlias = false;
        else if (option == "--strict")
            arguments.strict = true;
        else if (option == "--stats")
            arguments.stats = true;
        else if (option == "--help")
            arguments.help = true;
        else if (option == "--out" || option == "--size" || option == "--scale" ||
                 option == "--background" || option == "--font" || option == "--language") {
            if (i + 1 == argc) return option + " needs a value";
            const std::string value = argv[++i];
            std::string problem;
            if (option == "--size") problem = setSize(value, arguments);
            if (option == "--scale") problem = setScale(value, arguments);
            if (option == "--background") problem = setBackground(value, arguments);
            if (option == "--language") setLanguages(value, arguments);
            if (option == "--out") folder = value;
            if (option == "--font") arguments.font = value;
            if (value.empty()) problem = option + " needs a value";
            if (!problem.empty()) return problem;
        } else {
            return "unknown option " + option;
        }
    }
    if (arguments.help) return "";
    if (folder.empty()) {
        if (files.size() != 2) return "needs an input and an output file";
        arguments.jobs = {{files[0], files[1]}};
        return findClash(arguments.jobs);
    }
    if (files.empty()) return "needs an input file";
    for (const std::string& file : files) {
        if (file == "-") return "standard input has no name for its picture";
        arguments.jobs.push_back({file, pictureName(folder, file)});
    }
    return findClash(arguments.jobs);
}
