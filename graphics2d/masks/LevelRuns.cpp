// SPDX-License-Identifier: MIT
// Rows of masks are mostly long runs of one level: these are passed four vectors at a time, and the
// end is then looked for in words.
#include "graphics2d/masks/LevelRuns.h"

#include "graphics2d/strips/PixelLanes.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

int32_t endOfLevel(const uint8_t* levels, int32_t from, int32_t end, uint8_t level)
{
    constexpr int32_t kWord = 8; // levels
    constexpr int32_t kVector = sizeof(PixelVector);
    const uint64_t pattern = level * 0x0101010101010101u;
    const PixelVector patterns = all<PixelVector>(static_cast<uint32_t>(pattern));
    const auto othersIn = [=](int32_t column) {
        PixelVector some;
        std::memcpy(&some, levels + column, sizeof some);
        return some ^ patterns;
    };
    for (; end - from >= 4 * kVector; from += 4 * kVector)
        if (!isZero(othersIn(from) | othersIn(from + kVector) | othersIn(from + 2 * kVector) |
                    othersIn(from + 3 * kVector)))
            break;
    while (end - from >= kVector && isZero(othersIn(from)))
        from += kVector;
    for (; end - from >= kWord; from += kWord) {
        uint64_t word;
        std::memcpy(&word, levels + from, sizeof word);
        if (word != pattern) return from + __builtin_ctzll(word ^ pattern) / 8;
    }
    while (from < end && levels[from] == level)
        ++from;
    return from;
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
