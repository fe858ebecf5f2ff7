// SPDX-License-Identifier: MIT
// What the strip fillers share: channels, blending, coverage and the background. Internal.
//
// Pixels are 0xAARRGGBB. Where channels are interpolated they are carried as 8.16: a 16.16 number
// whose whole part is the byte.
//
// The translucent fillers of gradients and patterns work in pieces: the paint writes up to
// kPieceLength source pixels and weights into a PaintPiece, as if it drew opaquely, and
// TranslucentRun blends the piece into the target. So the paint's own code knows nothing of
// backgrounds, and the blending nothing of paints.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "graphics2d/strips/PixelLanes.h"
#include "math/FixedInline.h"
#include "math/FixedMath.h"

#include <cwchar>

namespace KAVO {
namespace Graphics2D {

// --- Blending ------------------------------------------------------------------------------------

// Moves two of a pixel's four channels, 16 bits apart, from the destination's values toward the
// source's by weight / 256, rounding toward minus infinity. Differences above 128 get one extra
// weight, so that a weight of 255 reaches the source exactly for large rises; falls reach it
// because the shift floors.
inline uint32_t blendPair(uint32_t destination, uint32_t source, uint32_t weight)
{
    // A lane holds 512 + source - destination - 129: bit 9 is set when the difference is above 128.
    const uint32_t raised = (((source | 0x02000200u) - 0x00810081u - destination) >> 9) & 0x10001u;
    // d * 256 + (s - d + raised) * w of each lane, which lies between 0 and 65535.
    return ((destination * (256 - weight) + (source + raised) * weight) >> 8) & 0x00FF00FFu;
}

// The same for all four channels alike, alpha included. Weights are 0 to 255.
inline Pixel blendPixel(Pixel destination, Pixel source, uint32_t weight)
{
    constexpr uint32_t kEven = 0x00FF00FFu;
    return blendPair(destination & kEven, source & kEven, weight) |
           blendPair((destination >> 8) & kEven, (source >> 8) & kEven, weight) << 8;
}

// --- 8.16 channels -------------------------------------------------------------------------------

constexpr int32_t kChannelHalf = 0x8000; // added before the byte is taken: rounds to nearest

// Blue, green, red and alpha, or differences or steps of them.
using Channels = U32x4;
constexpr int kBlue = 0;
constexpr int kGreen = 1;
constexpr int kRed = 2;
constexpr int kAlpha = 3;

inline Channels channelsOf(Pixel colour)
{
    return U32x4{colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF, colour >> 24} << 16;
}

inline int32_t alphaOf(Pixel colour)
{
    return static_cast<int32_t>((colour >> 24) << 16);
}

// The results of op for each channel.
template <class Op>
inline Channels mapChannels(Channels channels, Op op)
{
    for (int k = 0; k < 4; ++k)
        channels[k] = static_cast<uint32_t>(op(static_cast<int32_t>(channels[k])));
    return channels;
}

// Opaque pixels of count channels, whose alpha is left out. There must be room to read up to the
// next multiple of four.
void packOpaque(const Channels* channels, Pixel* pixels, int32_t count);

// --- Weights -------------------------------------------------------------------------------------

// The low byte of a product, one higher from 128 on, so that the full 255 * 255 / 256 = 254 acts as
// 255.
inline uint32_t raisedByte(int32_t product)
{
    const uint32_t weight = static_cast<uint32_t>(product) & 0xFFu;
    return (weight + (weight >> 7)) & 0xFFu;
}

// The weight of a gradient's colour: the opacity times the 8.16 alpha, truncated.
inline uint32_t gradientWeight(Coverage opacity, int32_t alpha)
{
    return raisedByte(fixMulSHRInline(opacity, alpha, 24));
}

// --- The span ------------------------------------------------------------------------------------

// Number of pixels of the current span, 0 for a reversed one.
inline int32_t spanLength(const MMContext2D& context)
{
    const int32_t count = fixFloor(context.spanEnd) - fixFloor(context.spanStart);
    return count > 0 ? count : 0;
}

inline Pixel* spanFirstPixel(const MMContext2D& context)
{
    return context.spanPixels + fixFloor(context.spanStart);
}

inline void fillPixels(Pixel* pixels, int32_t count, Pixel colour)
{
    // The C library's fill knows the widest registers of the machine; short spans are quicker here.
    constexpr int32_t kShortSpan = 64;
    static_assert(sizeof(wchar_t) == sizeof(Pixel), "a wide character is as wide as a pixel");
    if (count >= kShortSpan) {
        std::wmemset(reinterpret_cast<wchar_t*>(pixels), static_cast<wchar_t>(colour),
                     static_cast<size_t>(count));
        return;
    }
    int32_t i = 0;
    for (; i + 4 <= count; i += 4)
        store4(pixels + i, all4(colour));
    for (; i < count; ++i)
        pixels[i] = colour;
}

// How many steps from value on, value included, stay within [low, high] without wrapping; value
// lies in there. Never 0.
inline int32_t stepsWithin(int32_t value, int32_t step, int32_t low, int32_t high, int32_t atMost)
{
    if (atMost <= 1 || step == 0) return atMost;
    const int64_t last = value + int64_t{step} * (atMost - 1);
    if (low <= last && last <= high) return atMost;
    const uint32_t room = static_cast<uint32_t>(step > 0 ? high : value) -
                          static_cast<uint32_t>(step > 0 ? value : low);
    const uint32_t more = room / magnitudeOf(step);
    return more < static_cast<uint32_t>(atMost) ? static_cast<int32_t>(more) + 1 : atMost;
}

// --- Translucent runs ----------------------------------------------------------------------------

constexpr int32_t kPieceLength = 128; // a multiple of four

// Source pixels on their way into the target.
struct PaintPiece {
    Pixel colours[kPieceLength];
    uint32_t weights[kPieceLength]; // 0 to 255
};

// The coverage of one pixel after the other: the first, then the next, which grows by the step.
class CoverageSequence {
public:
    explicit CoverageSequence(const MMContext2D& context)
        : current_(context.spanCoverage), next_(context.spanCoverageNext),
          step_(context.spanCoverageStep)
    {
    }

    Coverage current() const { return current_; }
    Coverage next() const { return next_; }
    Coverage step() const { return step_; }

    // All pixels have the current coverage.
    bool isFlat() const { return step_ == 0 && next_ == current_; }
    // And it is 0 to 255 without a fraction.
    bool isFlatAndWhole() const { return isFlat() && (current_ & ~0x00FF0000) == 0; }

    void restartAt(Coverage coverage) { current_ = coverage; }

    void advance(int32_t count)
    {
        if (count <= 0) return;
        current_ = wrapAdd(next_, wrapMul(step_, count - 1));
        next_ = wrapAdd(next_, wrapMul(step_, count));
    }

private:
    Coverage current_;
    Coverage next_;
    Coverage step_;
};

// The current span as the target of a translucent gradient or pattern. Pixels are drawn from left
// to right, and the background of each is its right-hand neighbour: the destination is read at
// x + 1 and written at x. Only where that neighbour would be the word past the end of the target's
// last row does the pixel read itself.
class TranslucentRun {
public:
    explicit TranslucentRun(MMContext2D& context);
    ~TranslucentRun() { context_.spanCoverageNext = coverage.next(); }
    TranslucentRun(const TranslucentRun&) = delete;
    TranslucentRun& operator=(const TranslucentRun&) = delete;

    // True once when the span has a tail pixel, whose coverage is then the current one.
    bool takeTail();

    // Blends count pixels of one colour and its own alpha, by the gradients' weight.
    void drawColour(Pixel colour, int32_t count);

    // Blends the first count pixels of a piece. The coverage is the caller's to advance.
    void drawPiece(const PaintPiece& piece, int32_t count);

    // The same with four weights from weightsAt(i) at a time. Colours and weights are read up to
    // the next multiple of four.
    template <class WeightsAt>
    void blend(const Pixel* colours, WeightsAt weightsAt, int32_t count)
    {
        const int32_t pairs = pixelsWithNeighbour(count);
        Pixel* to = pixels_; // a copy: a store of pixels may alias the member
        int32_t i = 0;
        for (; i + 4 <= pairs; i += 4)
            store4(to + i, blend4(load4(to + i + 1), load4(colours + i), weightsAt(i)));
        for (; i < count; i += 4) {
            Pixel backgrounds[4] = {};
            const int32_t rest = count - i < 4 ? count - i : 4;
            for (int32_t k = 0; k < rest; ++k)
                backgrounds[k] = to[i + k < pairs ? i + k + 1 : i + k];
            storeFew(to + i, blend4(load4(backgrounds), load4(colours + i), weightsAt(i)), rest);
        }
        pixels_ += count;
    }

    CoverageSequence coverage;

private:
    void drawFlat(Pixel colour, uint32_t weight, int32_t count);

    // count, or one less when the neighbour of the last pixel lies past the target.
    int32_t pixelsWithNeighbour(int32_t count) const
    {
        const bool atEnd = reinterpret_cast<uintptr_t>(pixels_ + count) == targetEnd_;
        return atEnd && count > 0 ? count - 1 : count;
    }

    MMContext2D& context_;
    Pixel* pixels_;
    uintptr_t targetEnd_;
};

} // namespace Graphics2D
} // namespace KAVO
