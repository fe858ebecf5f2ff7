// SPDX-License-Identifier: MIT
// svgview: shows an SVG file in a window.
#include "common/FontFile.h"
#include "svgview/Arguments.h"
#include "svgview/Viewer.h"
#include "svgview/Window.h"

#include <cstdio>

using namespace KAVO;

namespace {

int fail(const std::string& message)
{
    std::fprintf(stderr, "svgview: %s\n", message.c_str());
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    Arguments arguments;
    arguments.font = DEFAULT_FONT;
    std::string problem = parseArguments(argc, argv, arguments);
    if (!problem.empty()) return fail(problem + "; --help lists the options");
    if (arguments.help) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (!arguments.font.empty() && !useFont(arguments.font))
        return fail(arguments.font + ": not a usable font");
    WatchedFile file(arguments.file);
    Svg::MMSvgDocument drawing;
    if (!drawing.loadFile(file.name())) return fail(file.name() + ": " + drawing.problem());
    Viewer viewer(std::move(file), std::move(drawing), arguments);
    problem = showWindow(viewer);
    return problem.empty() ? 0 : fail(problem);
}
