// SPDX-License-Identifier: MIT
// The four channels of a colour that is interpolated. Internal.
//
// They are carried as 8.16: 16.16 numbers whose whole part is the byte.
#pragma once

#include "graphics2d/strips/PixelLanes.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

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

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
