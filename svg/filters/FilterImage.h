// SPDX-License-Identifier: MIT
// What goes from one filter primitive to the next: pixels of 16 bits a channel, so that dark
// colours in linear light and long chains of primitives lose nothing that 8 bits can show.
#pragma once

#include "svg/geometry/PixelArea.h"
#include "svg/images/Picture.h"

#include <array>
#include <cstdint>
#include <vector>

namespace KAVO {
namespace Svg {

// Red, green, blue and alpha, premultiplied; 65535 is 1.
using Texel = std::array<uint16_t, 4>;
constexpr int kAlpha = 3;

// a * b / 65535, rounded to nearest.
inline uint16_t times(uint32_t a, uint32_t b)
{
    const uint32_t product = a * b + 0x8000;
    return static_cast<uint16_t>((product + (product >> 16)) >> 16);
}

// A premultiplied channel divided by its alpha, which is not 0.
inline uint16_t separated(uint32_t channel, uint32_t alpha)
{
    return static_cast<uint16_t>(std::min(65535u, (channel * 65535 + alpha / 2) / alpha));
}

inline uint16_t clamped(int64_t value)
{
    return static_cast<uint16_t>(std::clamp<int64_t>(value, 0, 65535));
}

// Transparent outside of its area.
class FilterImage {
public:
    FilterImage() = default;
    // Transparent.
    FilterImage(const PixelArea& area, bool linear)
        : area_(area), linear_(linear),
          texels_(static_cast<size_t>(area.width()) * static_cast<size_t>(area.height()))
    {
    }
    // A part of a premultiplied picture whose first pixel lies at the corner of an area.
    FilterImage(const Picture& picture, const PixelArea& area, const PixelArea& part);

    const PixelArea& area() const { return area_; }
    bool isLinear() const { return linear_; } // linear light, or else sRGB
    std::vector<Texel>& texels() { return texels_; }
    const std::vector<Texel>& texels() const { return texels_; }

    // Of device pixels. row() is where column area().left begins.
    Texel* row(int y) { return texels_.data() + offset(y); }
    const Texel* row(int y) const { return texels_.data() + offset(y); }
    Texel at(int x, int y) const
    {
        const bool inside =
            x >= area_.left && x < area_.right && y >= area_.top && y < area_.bottom;
        return inside ? row(y)[x - area_.left] : Texel{};
    }

    // The same colours, in linear light or in sRGB.
    void convert(bool linear);
    // In sRGB, 0xAARRGGBB, not premultiplied.
    Picture picture() const;

private:
    size_t offset(int y) const
    {
        return static_cast<size_t>(y - area_.top) * static_cast<size_t>(area_.width());
    }

    PixelArea area_;
    bool linear_ = false;
    std::vector<Texel> texels_;
};

// The part of a picture's area outside of which it is transparent.
PixelArea filledPart(const Picture& picture, const PixelArea& area);

// Of a colour 0xAARRGGBB in sRGB that is not premultiplied.
Texel texelOf(uint32_t argb, bool linear);

} // namespace Svg
} // namespace KAVO
