// SPDX-License-Identifier: MIT
// A picture in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace KAVO {
namespace Svg {

// Rows of 0xAARRGGBB, not premultiplied unless it is said, from the top left corner on, without
// padding.
struct Picture {
    int width = 0;
    int height = 0;
    bool hasAlpha = false; // some pixel is not opaque
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

// Divides the colours of a premultiplied picture by their alpha.
void separateAlpha(Picture& picture);

} // namespace Svg
} // namespace KAVO
