// SPDX-License-Identifier: MIT
// Sorting of linked items of an array. Internal.
#pragma once

#include <cstdint>

namespace KAVO {
namespace Graphics2D {

constexpr uint32_t kNoLink = 0xFFFFFFFF; // behind the last item

// Merge sort of count items from first on, each of which has the index of the one behind it in a
// member. Returns the new first one. The recursion is as deep as the binary logarithm of the count.
template <auto link, class Item, class IsBefore>
uint32_t sortLinked(Item* items, uint32_t first, uint32_t count, IsBefore isBefore)
{
    if (count < 2) return first;
    uint32_t middle = first;
    for (uint32_t i = 1; i < count / 2; ++i)
        middle = items[middle].*link;
    uint32_t b = items[middle].*link;
    items[middle].*link = kNoLink;
    uint32_t a = sortLinked<link>(items, first, count / 2, isBefore);
    b = sortLinked<link>(items, b, count - count / 2, isBefore);

    uint32_t head = kNoLink;
    uint32_t* end = &head;
    while (a != kNoLink && b != kNoLink) {
        uint32_t& lesser = isBefore(items[b], items[a]) ? b : a;
        *end = lesser;
        end = &(items[lesser].*link);
        lesser = *end;
    }
    *end = a != kNoLink ? a : b;
    return head;
}

} // namespace Graphics2D
} // namespace KAVO
