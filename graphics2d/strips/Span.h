// SPDX-License-Identifier: MIT
// The current span as the strip fillers read it from the context: its pixels and its coverage.
// Internal.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "graphics2d/strips/PixelLanes.h"

#include <cwchar>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

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

// The same column in the next row.
inline Pixel* pixelBelow(Pixel* pixel, size_t rowBytes)
{
    return reinterpret_cast<Pixel*>(reinterpret_cast<uintptr_t>(pixel) + rowBytes);
}

#if defined(__ARM_NEON)
// The address behind four pixels. On 32-bit ARM loads and stores move a register on, but GCC rather
// adds up the addresses of several beforehand, unless it is kept from knowing the sum.
template <class Pixels>
inline Pixels* behindFour(Pixels* pixels)
{
    pixels += 4;
#if !defined(__aarch64__)
    __asm__("" : "+r"(pixels));
#endif
    return pixels;
}

// Stores four pixels; the address behind them.
inline Pixel* storedNext(Pixel* to, U32x4 four)
{
    store4(to, four);
    return behindFour(to);
}
#endif

inline void fillPixels(Pixel* pixels, int32_t count, Pixel colour)
{
    const U32x4 four = all4(colour);
#if defined(__ARM_NEON)
    // The C library's fill stores one pixel at a time there.
    for (; count >= 16; count -= 16)
#pragma GCC unroll 4
        for (int k = 0; k < 4; ++k)
            pixels = storedNext(pixels, four);
#else
    // The C library's fill knows the widest registers of the machine; short spans are quicker here.
    constexpr int32_t kShortSpan = 64;
    static_assert(sizeof(wchar_t) == sizeof(Pixel), "a wide character is as wide as a pixel");
    if (count >= kShortSpan) {
        std::wmemset(reinterpret_cast<wchar_t*>(pixels), static_cast<wchar_t>(colour),
                     static_cast<size_t>(count));
        return;
    }
#endif
    int32_t i = 0;
    if constexpr (kLanes > 4)
        for (; i + kLanes <= count; i += kLanes)
            store(pixels + i, all<PixelVector>(colour));
    for (; i + 4 <= count; i += 4)
        store4(pixels + i, four);
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

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
