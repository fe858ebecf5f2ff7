// SPDX-License-Identifier: MIT
// compare_pictures: how far pairs of pictures are apart.
//
// Reads lines "FIRST.png SECOND.png NAME" from standard input and answers each with "MEAN BLANK1
// BLANK2 STRAY NAME": the mean difference of the colour channels from 0 to 255, whether either
// picture has a single colour only, and how many of a thousand pixels stray, which means that they
// are not like any pixel beside the same place in the other picture, whatever edges do between two
// renderers. Pictures with alpha lie on white.
#include "common/Picture.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

namespace {

constexpr int kTolerance = 16; // of 255

uint32_t onWhite(uint32_t pixel)
{
    const uint32_t alpha = pixel >> 24;
    uint32_t result = 0xFF000000;
    for (int shift = 0; shift < 24; shift += 8)
        result |= ((pixel >> shift & 0xFF) * alpha + 255 * (255 - alpha) + 127) / 255 << shift;
    return result;
}

std::string readOnWhite(const std::string& file, Picture& picture)
{
    const std::string problem = readPng(file, picture);
    std::transform(picture.pixels.begin(), picture.pixels.end(), picture.pixels.begin(), onWhite);
    return problem;
}

// A channel leaves the range of those around the place in the other picture by more than the
// tolerance.
bool strays(uint32_t pixel, const Picture& other, int x, int y)
{
    for (int shift = 0; shift < 24; shift += 8) {
        int low = 255;
        int high = 0;
        for (int v = std::max(0, y - 1); v <= std::min(other.height - 1, y + 1); ++v) {
            for (int u = std::max(0, x - 1); u <= std::min(other.width - 1, x + 1); ++u) {
                const int value = static_cast<int>(other.at(u, v) >> shift & 0xFF);
                low = std::min(low, value);
                high = std::max(high, value);
            }
        }
        const int value = static_cast<int>(pixel >> shift & 0xFF);
        if (value < low - kTolerance || value > high + kTolerance) return true;
    }
    return false;
}

// Of a thousand pixels; those that only one of the pictures has stray too.
double strayShare(const Picture& a, const Picture& b)
{
    const int width = std::min(a.width, b.width);
    const int height = std::min(a.height, b.height);
    const double all = std::max(a.width, b.width) * 1.0 * std::max(a.height, b.height);
    double count = all - width * 1.0 * height;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            count += strays(a.at(x, y), b, x, y) || strays(b.at(x, y), a, x, y);
    }
    return count * 1000 / all;
}

bool isBlank(const Picture& picture)
{
    return std::all_of(picture.pixels.begin(), picture.pixels.end(),
                       [&](uint32_t pixel) { return pixel == picture.pixels[0]; });
}

// Over the part that both have.
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
        const std::string problem1 = readOnWhite(firstFile, first);
        const std::string problem2 = readOnWhite(secondFile, second);
        if (!problem1.empty() || !problem2.empty()) {
            std::fprintf(stderr, "compare_pictures: %s: %s%s\n", name.c_str(), problem1.c_str(),
                         problem2.c_str());
            return 1;
        }
        std::printf("%.3f %d %d %.3f %s\n", meanDifference(first, second), isBlank(first),
                    isBlank(second), strayShare(first, second), name.c_str());
    }
    return 0;
}
