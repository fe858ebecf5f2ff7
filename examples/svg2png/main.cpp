// SPDX-License-Identifier: MIT
// svg2png: renders an SVG file to a PNG file.
#include "common/FontFolder.h"
#include "common/Glyphs.h"
#include "svg2png/Colour.h"
#include "svg2png/Renderer.h"

#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

struct Arguments {
    std::string input;
    std::string output;
    double scale = 1;
    double width = 0;                // pixels; 0: from the drawing
    double height = 0;               // 0 with a width: the longer side is width pixels long
    uint32_t background = 0;         // 0: transparent
    std::string font = DEFAULT_FONT; // a TrueType file, or empty
    bool stats = false;
    RenderOptions render;
};

const char kUsage[] =
    "usage: svg2png [options] INPUT.svg OUTPUT.png\n"
    "  --size N          longer side of the picture in pixels\n"
    "  --size WxH        size of the picture, the drawing fitted into it\n"
    "  --scale S         pixels per user unit (1)\n"
    "  --background C    colour behind the drawing, in SVG's notation (transparent)\n"
    "  --font FILE       font for all text\n"
    "  --no-antialias    draw pixels wholly or not at all\n"
    "  --stats           print time, scratch memory and bounds of what was drawn\n";

int fail(const std::string& message)
{
    std::fprintf(stderr, "svg2png: %s\n", message.c_str());
    return 1;
}

bool parseSize(const char* text, Arguments& arguments)
{
    TextScanner scanner(text);
    if (!scanner.number(arguments.width) || arguments.width <= 0) return false;
    if (scanner.character('x') && (!scanner.number(arguments.height) || arguments.height <= 0))
        return false;
    return scanner.atEnd();
}

bool parseScale(const char* text, double& scale)
{
    TextScanner scanner(text);
    return scanner.number(scale) && scanner.atEnd() && scale > 0;
}

// Returns an empty string, or what is wrong.
std::string parseArguments(int argc, char** argv, Arguments& arguments)
{
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        const bool hasValue = option == "--size" || option == "--scale" ||
                              option == "--background" || option == "--font";
        if (hasValue && i + 1 == argc) return option + " needs a value";
        if (option == "--size") {
            if (!parseSize(argv[++i], arguments))
                return "size is not N or WxH: " + std::string(argv[i]);
        } else if (option == "--scale") {
            if (!parseScale(argv[++i], arguments.scale))
                return "scale is not a positive number: " + std::string(argv[i]);
        } else if (option == "--background") {
            const std::optional<uint32_t> colour = parseColour(argv[++i], 0xFF000000);
            if (!colour) return "unknown colour: " + std::string(argv[i]);
            arguments.background = *colour;
        } else if (option == "--font") {
            arguments.font = argv[++i];
            if (arguments.font.empty()) return "the name of the font file is empty";
        } else if (option == "--no-antialias") {
            arguments.render.antiAlias = false;
        } else if (option == "--stats") {
            arguments.stats = true;
        } else if (option.size() > 1 && option[0] == '-') {
            return "unknown option " + option;
        } else {
            files.push_back(option);
        }
    }
    if (files.size() != 2) return "needs an input and an output file";
    arguments.input = files[0];
    arguments.output = files[1];
    return "";
}

// Size in pixels of the root element's viewport.
ViewportSize viewportSize(const Arguments& arguments, const SvgDocument& document)
{
    if (arguments.height != 0) return {arguments.width, arguments.height};
    const double longer = std::max(document.width(), document.height());
    const double scale = arguments.width != 0 ? arguments.width / longer : arguments.scale;
    return {document.width() * scale, document.height() * scale};
}

void printStats(const Renderer& renderer, double milliseconds)
{
    std::printf("time            %.2f ms\n", milliseconds);
    std::printf("peak scratch    %u words\n", renderer.peakScratchWords());
    const Box& b = renderer.bounds();
    if (b.empty())
        std::printf("bounds          nothing drawn\n");
    else
        std::printf("bounds          %.2f %.2f to %.2f %.2f\n", b.left, b.top, b.right, b.bottom);
}

int run(const Arguments& arguments)
{
    SvgDocument document;
    const std::string problem = document.load(arguments.input);
    if (!problem.empty()) return fail(arguments.input + ": " + problem);

    const ViewportSize viewport = viewportSize(arguments, document);
    const double width = std::max(1.0, std::ceil(viewport.width - 1e-3));
    const double height = std::max(1.0, std::ceil(viewport.height - 1e-3));
    if (!(viewport.width > 0 && viewport.height > 0 && width <= kLargestSide &&
          height <= kLargestSide)) {
        char message[128];
        std::snprintf(message, sizeof message, "a picture of %.0f x %.0f pixels is out of range",
                      width, height);
        return fail(arguments.input + ": " + message);
    }

    std::optional<FontFolder> font;
    if (!arguments.font.empty()) {
        font.emplace(arguments.font);
        if (!font->problem().empty()) return fail(font->problem());
        KAVO::Graphics2D::MMContext2D context;
        if (!hasAnyGlyph(context)) return fail(arguments.font + ": not a usable font");
    }
    const uint32_t ground = arguments.background != 0 ? arguments.background : 0xFF000000;
    Picture picture(static_cast<int>(width), static_cast<int>(height), ground);
    const auto start = std::chrono::steady_clock::now();
    Renderer renderer(document, picture, arguments.render);
    renderer.draw(viewport);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    if (arguments.background != 0) {
        makeOpaque(picture);
    } else {
        Picture overWhite(picture.width, picture.height, 0xFFFFFFFF);
        Renderer(document, overWhite, arguments.render).draw(viewport);
        picture = separateFromGround(picture, overWhite);
    }

    for (const std::string& what : renderer.shortcomings())
        std::fprintf(stderr, "svg2png: %s: not drawn: %s\n", arguments.input.c_str(), what.c_str());
    if (renderer.outOfMemory()) return fail(arguments.input + ": out of memory");
    const std::string writing = writePng(arguments.output, picture);
    if (!writing.empty()) return fail(arguments.output + ": " + writing);
    if (arguments.stats) printStats(renderer, time.count());
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    Arguments arguments;
    const std::string problem = parseArguments(argc, argv, arguments);
    if (!problem.empty()) return fail(problem + "; --help lists the options");
    return run(arguments);
}
