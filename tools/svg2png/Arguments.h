// SPDX-License-Identifier: MIT
// What svg2png is asked to do.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct Arguments {
    struct Job {
        std::string input;
        std::string output;
    };
    std::vector<Job> jobs;
    double width = 0;  // pixels; 0: from the drawing
    double height = 0; // 0 with a width: the longer side is width pixels long
    double scale = 1;
    uint32_t background = 0; // 0xAARRGGBB; 0: transparent
    std::string font;        // a TrueType file, or empty
    std::vector<std::string> languages{"en"};
    bool antiAlias = true;
    bool strict = false;
    bool stats = false;
    bool help = false;
};

extern const char kUsage[];

// Returns an empty string, or what is wrong.
std::string parseArguments(int argc, char** argv, Arguments& arguments);
