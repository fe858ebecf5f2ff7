// SPDX-License-Identifier: MIT
// Square roots by a table, for loops over pixels. Internal.
#pragma once

#include "graphics2d/Level.h"

#include <cstdint>

namespace KAVO {
namespace Graphics2D {

constexpr uint32_t kRootSteps = 512; // of the table per 1.0
constexpr uint32_t kFirstRoot = kRootSteps / 4;

// The roots of k / 512 for k from 128 to 512, as 24 fraction bits.
struct RootTable {
    uint32_t roots[kRootSteps - kFirstRoot + 1];
};

extern const RootTable kRoots;

inline namespace MM2D_LEVEL {

// Root of a whole number, to 2^-18 of itself. The number is shifted up by an even count of bits so
// that it lies between 1/4 and 1 of 2^64:
//   63       55              40
//   | index  | between two    |  not looked at
inline uint32_t rootOf(uint64_t square)
{
    square |= 1; // not 0
    const uint32_t shift = static_cast<uint32_t>(__builtin_clzll(square)) & ~1u;
    const uint32_t top = static_cast<uint32_t>(square << shift >> 32);
    const uint32_t* const entry = &kRoots.roots[(top >> 23) - kFirstRoot];
    const uint32_t between = top >> 8 & 0x7FFF;
    const uint32_t root = entry[0] + ((entry[1] - entry[0]) * between >> 15);
    return root << 8 >> (shift / 2);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
