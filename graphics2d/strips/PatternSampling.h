// SPDX-License-Identifier: MIT
// The walk of a span through the pattern image, shared by the three filters. Internal.
//
// The paint's transform maps a device point to texel coordinates (u, v), and one pixel to the right
// adds the same step to each. Beside the exact coordinate an axis has the index of the texel it
// points at, which is stepped in whole numbers and carries. For a negative step the fraction that
// carries is that of the negated coordinate, so the index may lie one off the coordinate's whole
// part: on whole texels when the walk began between two, and between texels when it began on a
// whole one. Filters add tap offsets, computed from the exact coordinate, to the index; together
// they can then leave the image by a texel, which texelAt mends.
#pragma once

#include "graphics2d/strips/PieceBlending.h"

#include <algorithm>
#include <cstddef>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

class TexelAxis {
public:
    // By the refined rules the index is the whole part of the coordinate, always and everywhere.
    TexelAxis(int64_t start, Fixed step, int32_t size, bool refined)
        : distance_(start), step_(step), size_(size),
          bias_(refined || step >= 0                          ? 0
                : fixFraction(static_cast<Fixed>(start)) != 0 ? -1
                                                              : 0xFFFF),
          wrappedBits_(refined ? 0 : 32)
    {
    }

    // The coordinate is kept modulo 2^32, the index is not.
    int64_t distance() const { return distance_; }
    Fixed position() const { return static_cast<Fixed>(static_cast<uint32_t>(distance_)); }
    Fixed step() const { return step_; }
    int32_t size() const { return size_; }
    int64_t texel() const
    {
        const uint64_t unwrapped = static_cast<uint64_t>(distance_) << wrappedBits_;
        return static_cast<int64_t>(unwrapped) >> wrappedBits_ >> 16;
    }
    int64_t index() const { return (distance_ + bias_) >> 16; }
    // From a texel of the coordinate to one of the index.
    int64_t indexOffset() const { return index() - texel(); }
    // A texel that many after the one of the coordinate, as an index; the outermost one beyond the
    // image.
    int64_t tap(int32_t offset) const
    {
        const int64_t at = texel();
        const int64_t last = size_ - 1;
        const int64_t wanted = at + offset;
        return index() - at + (wanted < 0 ? 0 : wanted < last ? wanted : last);
    }
    // The position whose whole part is the index, as long as the coordinate has not wrapped.
    Fixed indexPosition() const { return static_cast<Fixed>(distance_ + bias_); }
    uint32_t fraction() const { return fixFraction(position()); }

    void advance(int32_t pixels) { distance_ += int64_t{step_} * pixels; }

    // How many pixels from here on, up to atMost, have their whole part of the position within
    // [first, size - last), so that a filter that reads that many texels to either side needs no
    // tap offsets. Backward walks keep one texel more of distance.
    int32_t pixelsInside(int32_t first, int32_t last, int32_t atMost) const
    {
        const Fixed at = position();
        if (at != distance_) return 0;
        const int32_t reserve = step_ < 0 ? 1 : 0;
        const int32_t end = size_ - last - reserve;
        const Fixed low = fixFromInt(first + reserve);
        const Fixed high = end < 0x8000 ? end * kFixedOne - 1 : INT32_MAX;
        if (at < low || at > high) return 0;
        return stepsWithin(at, step_, low, high, atMost);
    }

private:
    int64_t distance_; // 16.16 texels, exact for any span
    Fixed step_;
    int32_t size_;        // texels
    Fixed bias_;          // of the index
    uint8_t wrappedBits_; // on top of the distance, that the classic coordinate is without
};

// The texels that the next pixels of an axis point at; all of them inside the image.
struct TexelRange {
    int32_t first;
    int32_t count;
    Fixed start; // the index position from the first texel on

    TexelRange(const TexelAxis& axis, int32_t pixels)
    {
        const Fixed begin = axis.indexPosition();
        const int32_t texel = fixFloor(begin);
        const int32_t lastTexel = fixFloor(begin + axis.step() * (pixels - 1));
        first = texel < lastTexel ? texel : lastTexel;
        count = (texel < lastTexel ? lastTexel - texel : texel - lastTexel) + 1;
        start = begin - fixFromInt(first);
    }
};

// A point of the pattern image, 16.16 texels.
struct TexelPoint {
    int64_t u;
    int64_t v;
};

// From a point of the paint's image on, by either mode's rules.
struct PatternWalk {
    PatternWalk(const MMPaint& patternPaint, TexelPoint start, bool byRefinedRules)
        : paint(patternPaint),
          u(start.u, paint.patternTransform.a, paint.patternImage.width, byRefinedRules),
          v(start.v, paint.patternTransform.b, paint.patternImage.height, byRefinedRules),
          alpha(byRefinedRules ? TexelAlpha::kMadeWhole : TexelAlpha::kKept),
          isRefined(byRefinedRules)
    {
    }

    bool isEmpty() const { return pixels() == nullptr || u.size() == 0 || v.size() == 0; }
    const Pixel* pixels() const { return paint.patternImage.pixels; }
    int32_t width() const { return u.size(); }
    // Upright, and no more texels than pixels from left to right.
    bool isMagnified() const
    {
        return v.step() == 0 && static_cast<uint32_t>(u.step()) <= static_cast<uint32_t>(kFixedOne);
    }

    // Inside the image, where no tap offsets are needed; they fit a pointer difference on every
    // host.
    const Pixel* row(Fixed vIndex) const
    {
        return pixels() + static_cast<ptrdiff_t>(fixFloor(vIndex)) * width();
    }

    // Rows follow each other without gaps. An index outside the image is brought back by one row
    // up or down, or else to the nearest end.
    Pixel texelAt(int64_t column, int64_t row) const
    {
        const ptrdiff_t width = u.size();
        const ptrdiff_t end = width * v.size();
        ptrdiff_t index = static_cast<ptrdiff_t>(row) * width + static_cast<ptrdiff_t>(column);
        if (index < 0) index = index >= -width ? index + width : 0;
        if (index >= end) index = index < end + width ? index - width : end - 1;
        return pixels()[index];
    }

    void advance(int32_t pixels)
    {
        u.advance(pixels);
        v.advance(pixels);
    }

    const MMPaint& paint;
    TexelAxis u;
    TexelAxis v;
    TexelAlpha alpha;
    bool isRefined;
};

// Writes the colours of the next count pixels. Either all of them are inside the image, where no
// tap offsets are needed, or they are at most kFewPixels that may be anywhere. alphas is null for
// the opaque filler; filters whose colours have no alpha leave it there.
using SampleTexels = void (*)(const PatternWalk& walk, bool inside, Pixel* colours,
                              uint32_t* alphas, int32_t count);

constexpr int32_t kFewPixels = 16;

constexpr uint32_t kAlwaysMixes = 0x80000000u; // no bit of a coordinate inside an image

// What makes a filter.
struct PatternFilter {
    int32_t before; // texels it reads before and after the one it points at
    int32_t after;
    int32_t afterMagnified; // the same of a magnified walk
    SampleTexels sample;
    // Turns alphas into weights; moves the coverage on. Null when the colours have their alpha.
    void (*weigh)(PaintPiece& piece, CoverageSequence& coverage, int32_t count);

    // By the refined rules all colours have the alpha that the walk says.
    SampleTexels sampleRefined;
    Fixed refinedOffset; // from a pixel's centre to the point whose whole part is the texel

    // Bits of the coordinates' fractions by which it mixes several texels into one colour: where
    // they are 0, one texel per pixel is a copy. kAlwaysMixes: never.
    uint32_t mixingBits;
    constexpr bool mixes() const { return mixingBits != 0; }
};

// From the start of the context's current span on.
PatternWalk walkOf(const MMContext2D& context, const PatternFilter& filter);

// The strip fillers, in both modes.
void drawPattern(MMContext2D& context, const PatternFilter& filter, bool translucent);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
