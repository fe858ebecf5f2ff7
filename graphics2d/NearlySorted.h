// Sorting what is nearly in order. Internal.
#pragma once

#include <algorithm>
#include <cstdint>

namespace KAVO {
namespace Graphics2D {

// Sorts by insertion, unless the items turn out to be so far from order that this would take long.
template <class T, class Less>
void sortNearlySorted(T* items, uint32_t count, Less less)
{
    uint64_t budget = uint64_t{8} * count + 64;
    for (uint32_t i = 1; i < count; ++i) {
        if (!less(items[i], items[i - 1])) continue;
        const T moving = items[i];
        uint32_t to = i;
        do {
            items[to] = items[to - 1];
            --to;
        } while (to > 0 && less(moving, items[to - 1]));
        items[to] = moving;
        if (i - to > budget) {
            std::sort(items, items + count, less);
            return;
        }
        budget -= i - to;
    }
}

} // namespace Graphics2D
} // namespace KAVO
