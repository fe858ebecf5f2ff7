// SPDX-License-Identifier: MIT
// The functions that tiles are drawn by, and their walk through the image. Internal.
#pragma once

#include "graphics2d/sources/MMTileSource.h"

#include <cstddef>

namespace KAVO {
namespace Graphics2D {

constexpr int32_t kTexelBits = 28; // of a coordinate's fraction

// Texels are those of the whole part of a coordinate ...
void writeNearestTiles(const void* state, int32_t row, int32_t column, int32_t count,
                       Pixel* pixels);

// ... and those of the next one, by the upper 8 bits of the fraction ...
void writeBilinearTiles(const void* state, int32_t row, int32_t column, int32_t count,
                        Pixel* pixels);

// ... and from one before to two after, by the upper 16 bits of the fraction.
void writeBicubicTiles(const void* state, int32_t row, int32_t column, int32_t count,
                       Pixel* pixels);

// One coordinate of the pixels of a row, within the period.
class TileWalk {
public:
    // The sum of the axis is below 2^17 periods when it is made positive, so that the quotient by
    // the reciprocal is at most 5 too small.
    TileWalk(const MMTileAxis& axis, int32_t row, int32_t column)
        : position_(static_cast<uint64_t>(
                        axis.texels.at(static_cast<int16_t>(row), static_cast<int16_t>(column))) +
                    (axis.period << 16)),
          step_(static_cast<uint64_t>(axis.texels.perColumn)), period_(axis.period),
          size_(axis.size), texels_(static_cast<int32_t>(axis.period >> kTexelBits))
    {
        const uint64_t periods = (position_ >> kTexelBits) * axis.reciprocal >> 32;
        position_ -= periods * period_;
        while (position_ >= period_)
            position_ -= period_;
    }

    bool isFixed() const { return step_ == 0; }
    bool isCopied() const { return step_ == uint64_t{1} << kTexelBits && texels_ == size_; }

    // Whole part and fraction, in 16 bits.
    int32_t texel() const { return static_cast<int32_t>(position_ >> kTexelBits); }
    uint32_t fraction() const { return static_cast<uint32_t>(position_ >> 12) & 0xFFFFu; }

    void advance()
    {
        position_ += step_;
        if (position_ >= period_) position_ -= period_;
    }
    void advance(int32_t texels)
    {
        position_ += static_cast<uint64_t>(texels) << kTexelBits;
        if (position_ >= period_) position_ -= period_;
    }

    // Neighbours within the period, and where a texel of the period lies in the image.
    int32_t before(int32_t texel) const { return texel == 0 ? texels_ - 1 : texel - 1; }
    int32_t after(int32_t texel) const { return texel + 1 == texels_ ? 0 : texel + 1; }
    int32_t inImage(int32_t texel) const { return texel < size_ ? texel : texels_ - 1 - texel; }

private:
    uint64_t position_; // 2^28 to a texel
    uint64_t step_;
    uint64_t period_;
    int32_t size_;   // texels of the image
    int32_t texels_; // of the period
};

inline const Pixel* tileRow(const MMTileSource& source, int32_t y)
{
    return source.pixels + static_cast<size_t>(source.rowLength) * static_cast<size_t>(y);
}

} // namespace Graphics2D
} // namespace KAVO
