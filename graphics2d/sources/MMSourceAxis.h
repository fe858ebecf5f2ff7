// SPDX-License-Identifier: MIT
// A quantity of a paint source that changes evenly across the target.
#pragma once

#include <cstdint>

namespace KAVO {
namespace Graphics2D {

// Its value at the centre of a device pixel, in units of which the set-up chooses 2^n to one. Sums
// are formed modulo 2^64, so that no pixel depends on where its row was begun.
struct MMSourceAxis {
    int64_t atOrigin; // at the centre of the pixel (0, 0)
    int64_t perColumn;
    int64_t perRow;

    int64_t at(int32_t row, int32_t column) const
    {
        return static_cast<int64_t>(
            static_cast<uint64_t>(atOrigin) +
            static_cast<uint64_t>(perColumn) * static_cast<uint64_t>(int64_t{column}) +
            static_cast<uint64_t>(perRow) * static_cast<uint64_t>(int64_t{row}));
    }
};

} // namespace Graphics2D
} // namespace KAVO
