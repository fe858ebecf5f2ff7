// SPDX-License-Identifier: MIT
// svg2png: renders SVG files to PNG files.
#include "common/FontFile.h"
#include "common/Picture.h"
#include "common/Shortcomings.h"
#include "svg/MMSvgDocument.h"
#include "svg2png/Arguments.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <unistd.h>

using namespace KAVO;

namespace {

// What is said on the way: messages, and with several files on a terminal a line below them that
// tells how far it is.
class Messages {
public:
    explicit Messages(size_t count)
        : count_(count), watched_(count > 1 && isatty(STDERR_FILENO) != 0)
    {
    }
    ~Messages()
    {
        if (watched_) std::fputc('\n', stderr);
    }
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    void begin(size_t number, const std::string& name)
    {
        progress_ = std::to_string(number) + "/" + std::to_string(count_) + " " + name;
        showProgress();
    }
    bool complain(const std::string& message) const
    {
        std::fprintf(stderr, "%ssvg2png: %s\n", watched_ ? kStartOfLine : "", message.c_str());
        showProgress();
        return false;
    }

private:
    static constexpr const char* kStartOfLine = "\r\x1B[K"; // and nothing on it

    void showProgress() const
    {
        if (watched_) std::fprintf(stderr, "%s%s", kStartOfLine, progress_.c_str());
    }

    size_t count_;
    bool watched_;
    std::string progress_;
};

// Size of the picture in pixels: whole ones, in the drawing's proportions unless both are given.
Svg::Size pictureSize(const Arguments& arguments, const Svg::Size& drawing)
{
    Svg::Size size{arguments.width, arguments.height};
    if (arguments.height == 0) {
        const double longer = std::max(drawing.width, drawing.height);
        const double scale = arguments.width != 0 ? arguments.width / longer : arguments.scale;
        size = {drawing.width * scale, drawing.height * scale};
    }
    return {std::max(1.0, std::round(size.width)), std::max(1.0, std::round(size.height))};
}

void separateAlpha(Picture& picture)
{
    for (uint32_t& pixel : picture.pixels) {
        const uint32_t alpha = pixel >> 24;
        if (alpha == 0 || alpha == 255) continue;
        uint32_t result = alpha << 24;
        for (int shift = 0; shift < 24; shift += 8)
            result |= std::min(255u, ((pixel >> shift & 0xFF) * 255 + alpha / 2) / alpha) << shift;
        pixel = result;
    }
}

uint32_t premultiplied(uint32_t pixel)
{
    const uint32_t alpha = pixel >> 24;
    uint32_t result = alpha << 24;
    for (int shift = 0; shift < 24; shift += 8)
        result |= ((pixel >> shift & 0xFF) * alpha + 127) / 255 << shift;
    return result;
}

void printStats(const Svg::RenderResult& result, double milliseconds)
{
    const auto number = [](Fixed value) { return value / 65536.0; };
    std::printf("time            %.2f ms\n", milliseconds);
    std::printf("peak scratch    %u words\n", result.peakScratchWords);
    const MMFixedRegion& b = result.bounds;
    if (b.x0 > b.x1)
        std::printf("bounds          nothing drawn\n");
    else
        std::printf("bounds          %.2f %.2f to %.2f %.2f\n", number(b.x0), number(b.y0),
                    number(b.x1), number(b.y1));
}

// The drawing of a file or, for "-", of standard input, with references from the working folder on.
bool load(Svg::MMSvgDocument& document, const std::string& input, uint64_t mostBytes)
{
    if (input != "-") return document.loadFile(input);
    std::string bytes;
    char block[1 << 16];
    while (const size_t count = std::fread(block, 1, sizeof block, stdin)) {
        bytes.append(block, count);
        if (bytes.size() > mostBytes) break; // which loading refuses
    }
    return document.loadBytes(bytes);
}

// False when the picture could not be made, or is not whole although it has to be.
bool run(const Arguments& arguments, const Arguments::Job& job, const Messages& messages)
{
    Svg::LoadOptions options;
    options.languages = arguments.languages;
    Svg::MMSvgDocument document(options);
    if (!load(document, job.input, options.limits.documentBytes))
        return messages.complain(job.input + ": " + document.problem());

    const Svg::Size size = pictureSize(arguments, document.size());
    if (!(size.width <= kLargestSide && size.height <= kLargestSide)) {
        char message[128];
        std::snprintf(message, sizeof message, ": a picture of %.0f x %.0f pixels is out of range",
                      size.width, size.height);
        return messages.complain(job.input + message);
    }
    Picture picture(static_cast<int>(size.width), static_cast<int>(size.height),
                    premultiplied(arguments.background));
    const auto width = static_cast<uint16_t>(picture.width);
    const auto height = static_cast<uint16_t>(picture.height);
    const MMPixmap target = {width, height, width * 4u, 0, picture.pixels.data(), 0};
    const auto start = std::chrono::steady_clock::now();
    document.render(target, {0, 0, size.width, size.height}, {arguments.antiAlias});
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    separateAlpha(picture);

    const std::vector<Svg::Shortcoming> shortcomings = document.shortcomings();
    for (const Svg::Shortcoming& s : shortcomings)
        messages.complain(describe(job.input, s));
    if (document.result().outOfMemory) return messages.complain(job.input + ": out of memory");
    const std::string writing = writePng(job.output, picture);
    if (!writing.empty()) return messages.complain(job.output + ": " + writing);
    if (arguments.stats) printStats(document.result(), time.count());
    return shortcomings.empty() || !arguments.strict;
}

bool runAll(const Arguments& arguments)
{
    Messages messages(arguments.jobs.size());
    bool good = true;
    size_t number = 0;
    for (const Arguments::Job& job : arguments.jobs) {
        messages.begin(++number, job.input);
        good = run(arguments, job, messages) && good;
    }
    return good;
}

} // namespace

int main(int argc, char** argv)
{
    Arguments arguments;
    arguments.font = DEFAULT_FONT;
    const std::string problem = parseArguments(argc, argv, arguments);
    if (!problem.empty()) return Messages(1).complain(problem + "; --help lists the options"), 1;
    if (arguments.help) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (!arguments.font.empty() && !useFont(arguments.font))
        return Messages(1).complain(arguments.font + ": not a usable font"), 1;
    return runAll(arguments) ? 0 : 1;
}
