// SPDX-License-Identifier: MIT
// The functions that tiles are drawn by, and their walk through the image. Internal.
#pragma once

#include "graphics2d/Level.h"
#include "graphics2d/sources/MMTileSource.h"

#include <cstddef>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_NARROW_LEVEL {

// Texels are those of the whole part of a coordinate, where a row of pixels meets one row of
// texels; of any count.
void writeUprightTiles(const void* state, int32_t row, int32_t column, int32_t count,
                       Pixel* pixels);

} // namespace MM2D_NARROW_LEVEL

inline namespace MM2D_LEVEL {

constexpr int32_t kTexelBits = 28; // of a coordinate's fraction

// The same for any rows ...
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
        : step_(axis.texels.perColumn), period_(axis.period), size_(axis.size),
          texels_(static_cast<int32_t>(axis.period >> kTexelBits))
    {
        auto sum = static_cast<uint64_t>(
            axis.texels.at(static_cast<int16_t>(row), static_cast<int16_t>(column)) +
            (period_ << 16));
        const uint64_t periods = (sum >> kTexelBits) * static_cast<uint64_t>(axis.reciprocal) >> 32;
        sum -= periods * static_cast<uint64_t>(period_);
        while (sum >= static_cast<uint64_t>(period_))
            sum -= static_cast<uint64_t>(period_);
        position_ = static_cast<int64_t>(sum);
    }

    bool isFixed() const { return step_ == 0; }
    bool isMirrored() const { return texels_ != size_; }
    int64_t position() const { return position_; }
    int64_t step() const { return step_; }
    int32_t size() const { return size_; }

    // Whole part and fraction, in 16 bits.
    int32_t texel() const { return static_cast<int32_t>(position_ >> kTexelBits); }
    uint32_t fraction() const { return static_cast<uint32_t>(position_ >> 12) & 0xFFFFu; }

    void advance() { moveBy(step_); }

    // By a distance of at most a period.
    void moveBy(int64_t distance)
    {
        position_ += distance;
        if (position_ >= period_) position_ -= period_;
        if (position_ < 0) position_ += period_;
    }

    // The half of a mirrored period that is the other way round.
    bool isInMirror() const { return texel() >= size_; }
    int64_t positionInImage() const { return isInMirror() ? period_ - 1 - position_ : position_; }

    // How many of the next pixels, of which there are at least one, lie in the same half.
    int32_t lengthOfRun(int32_t count) const
    {
        const int64_t half = int64_t{size_} << kTexelBits;
        const int64_t first = isInMirror() ? half : 0;
        const int64_t last = first + half - 1;
        const int64_t end = position_ + step_ * (count - 1);
        if (first <= end && end <= last) return count;
        const int64_t more = step_ > 0 ? (last - position_) / step_ : (position_ - first) / -step_;
        return static_cast<int32_t>(more) + 1;
    }

    // Whether the next few pixels and the one behind them lie within the same period; then they
    // may be skipped.
    bool staysWithin(int32_t pixels) const
    {
        return static_cast<uint64_t>(position_ + step_ * pixels) < static_cast<uint64_t>(period_);
    }
    void skip(int32_t pixels) { position_ += step_ * pixels; }

    // Neighbours within the period, and where a texel of the period lies in the image.
    int32_t before(int32_t texel) const { return texel == 0 ? texels_ - 1 : texel - 1; }
    int32_t after(int32_t texel) const { return texel + 1 == texels_ ? 0 : texel + 1; }
    int32_t inImage(int32_t texel) const { return texel < size_ ? texel : texels_ - 1 - texel; }

private:
    int64_t position_; // 2^28 to a texel
    int64_t step_;     // at most half a period
    int64_t period_;
    int32_t size_;   // texels of the image
    int32_t texels_; // of the period
};

inline const Pixel* tileRow(const MMTileSource& source, int64_t y)
{
    return source.pixels + static_cast<ptrdiff_t>(source.rowLength) * static_cast<ptrdiff_t>(y);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
