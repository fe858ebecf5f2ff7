// SPDX-License-Identifier: MIT
// A picture in memory, and PNG files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Rows of 0xAARRGGBB from the top left corner on, without padding.
struct Picture {
    int width = 0;
    int height = 0;
    bool hasAlpha = false; // set when a file is read: some pixel is not opaque
    std::vector<uint32_t> pixels;

    Picture() = default;
    Picture(int w, int h, uint32_t background)
        : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h), background)
    {
    }

    uint32_t& at(int x, int y)
    {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
    uint32_t at(int x, int y) const { return const_cast<Picture*>(this)->at(x, y); }
};

// No side of a picture is longer than this, in or out, so that every pixel and its neighbourhood
// are well inside the range of 16.16 coordinates.
constexpr int kLargestSide = 8192;

// Each returns an empty string, or what went wrong.
std::string readPng(const std::string& fileName, Picture& picture);
std::string readPng(const uint8_t* data, size_t size, Picture& picture);
// Without alpha where all pixels are opaque. A file that cannot be written whole is removed.
std::string writePng(const std::string& fileName, const Picture& picture);

// The alpha of a picture that was drawn into means nothing: paints mix it like a colour. Drawing
// over an opaque ground and then calling this gives an opaque picture.
void makeOpaque(Picture& picture);
