// SPDX-License-Identifier: MIT
// compare_pictures: how far pairs of pictures are apart.
//
// Reads lines "FIRST.png SECOND.png NAME" from standard input and answers each with "MEAN BLANK1
// BLANK2 NAME": the mean difference of the colour channels from 0 to 255, and whether either
// picture has a single colour only.
#include "common/Picture.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

namespace {

bool isBlank(const Picture& picture)
{
    return std::all_of(picture.pixels.begin(), picture.pixels.end(),
                       [&](uint32_t pixel) { return pixel == picture.pixels[0]; });
}

// Over the part that both have. Both are opaque.
double meanDifference(const Picture& a, const Picture& b)
{
    const int width = std::min(a.width, b.width);
    const int height = std::min(a.height, b.height);
    double sum = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int shift = 0; shift < 24; shift += 8)
                sum += std::abs(static_cast<int>(a.at(x, y) >> shift & 0xFF) -
                                static_cast<int>(b.at(x, y) >> shift & 0xFF));
        }
    }
    return sum / (3.0 * width * height);
}

} // namespace

int main()
{
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string firstFile;
        std::string secondFile;
        std::string name;
        words >> firstFile >> secondFile >> name;
        Picture first;
        Picture second;
        const std::string problem1 = readPng(firstFile, first);
        const std::string problem2 = readPng(secondFile, second);
        if (!problem1.empty() || !problem2.empty()) {
            std::fprintf(stderr, "compare_pictures: %s: %s%s\n", name.c_str(), problem1.c_str(),
                         problem2.c_str());
            return 1;
        }
        std::printf("%.3f %d %d %s\n", meanDifference(first, second), isBlank(first),
                    isBlank(second), name.c_str());
    }
    return 0;
}
