// SPDX-License-Identifier: MIT
// What svgview is asked to do.
#pragma once

#include <cstdint>
#include <string>

struct Arguments {
    std::string file;
    int width = 0; // pixels of the window; 0: from the drawing
    int height = 0;
    uint32_t background = 0xFFFFFFFF; // opaque
    std::string font;                 // a TrueType file, or empty
    bool help = false;
};

extern const char kUsage[];

// Returns an empty string, or what is wrong.
std::string parseArguments(int argc, char** argv, Arguments& arguments);
