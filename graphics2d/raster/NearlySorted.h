// SPDX-License-Identifier: MIT
// Sorting what is nearly in order. Internal.
#pragma once

#include <cstdint>

namespace KAVO {
namespace Graphics2D {

// Sorts records of the given number of 32-bit words by their first two words, read as signed
// numbers. In place, and never more than about n log n steps.
void sortByHeap(void* records, uint32_t words, uint32_t count);

// Sorts by insertion, unless the items turn out to be so far from order that this would take long.
// The order, isBefore(a, b), must be that of the first two words.
template <class T>
void sortNearlySorted(T* items, uint32_t count)
{
    static_assert(sizeof(T) % sizeof(uint32_t) == 0, "records are moved by words");
    uint32_t budget = 8 * count + 64; // steps
    for (uint32_t i = 1; i < count; ++i) {
        if (!isBefore(items[i], items[i - 1])) continue;
        const T moving = items[i];
        uint32_t to = i;
        do {
            items[to] = items[to - 1];
            --to;
        } while (to > 0 && isBefore(moving, items[to - 1]) && --budget > 0);
        items[to] = moving;
        if (budget == 0) {
            sortByHeap(items, sizeof(T) / sizeof(uint32_t), count);
            return;
        }
    }
}

} // namespace Graphics2D
} // namespace KAVO
