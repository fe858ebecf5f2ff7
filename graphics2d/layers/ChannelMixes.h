// SPDX-License-Identifier: MIT
// The blend modes that mix each channel by sums and products. Internal.
//
// From the layer's channel s and its alpha sa, the target's d and its alpha da they find sa * da
// times the mix of d / da and s / sa. Channels are bytes not above their alpha, and results lie
// between 0 and sa * da; for alphas as channels they are sa * da. T is lanes of 16
// bits, or uint32_t, which holds no alphas.
#pragma once

#include "graphics2d/strips/PixelLanes.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// Whether channels are mixed eight at a time. Elsewhere the compiler would take each lane of each
// mode apart into code of its own.
#if defined(__SSE2__) || defined(__ARM_NEON)
constexpr bool kMixesLanes = true;
#else
constexpr bool kMixesLanes = false;
#endif

template <class T>
T lesser(T a, T b)
{
    return a < b ? a : b;
}

template <class T>
T greater(T a, T b)
{
    return a < b ? b : a;
}

// a where x is below y, which are no more than 15 bits: signed comparisons are one instruction
// everywhere.
template <class T>
T chooseBelow(T x, T y, T a, T b)
{
    using Signed = decltype(x < y);
    return (Signed)x < (Signed)y ? a : b;
}

inline uint32_t chooseBelow(uint32_t x, uint32_t y, uint32_t a, uint32_t b)
{
    return x < y ? a : b;
}

template <class T>
T withoutAlphas(T channels)
{
    constexpr uint64_t kColours = 0x0000FFFFFFFFFFFFu; // of a pixel, in four lanes
    uint64_t pixels[sizeof(T) / sizeof(uint64_t)];
    std::memcpy(pixels, &channels, sizeof channels);
    for (uint64_t& pixel : pixels)
        pixel &= kColours;
    std::memcpy(&channels, pixels, sizeof channels);
    return channels;
}

inline uint32_t withoutAlphas(uint32_t channel)
{
    return channel;
}

template <class T>
T multiply(T s, T, T d, T)
{
    return s * d;
}

template <class T>
T screen(T s, T sa, T d, T da)
{
    return s * da + d * (sa - s);
}

template <class T>
T hardLight(T s, T sa, T d, T da)
{
    const T dark = s * d;
    const T light = (sa - s) * (da - d);
    return chooseBelow(sa, s + s, sa * da - (light + light), dark + dark);
}

template <class T>
T overlay(T s, T sa, T d, T da)
{
    return hardLight<T>(d, da, s, sa);
}

template <class T>
T darken(T s, T sa, T d, T da)
{
    return lesser(s * da, d * sa);
}

template <class T>
T lighten(T s, T sa, T d, T da)
{
    return greater(s * da, d * sa);
}

template <class T>
T difference(T s, T sa, T d, T da)
{
    return lighten<T>(s, sa, d, da) - withoutAlphas(darken<T>(s, sa, d, da));
}

template <class T>
T exclusion(T s, T sa, T d, T da)
{
    return screen<T>(s, sa, d, da) - withoutAlphas(s * d);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
