// SPDX-License-Identifier: MIT
// A pool of equal-sized items in one heap block, with a bitmap of free slots.
#include "memory/MMBucketContext.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr uint32_t kBitsPerWord = 32;

uint32_t bitmapWordsFor(uint32_t itemCount)
{
    return itemCount / kBitsPerWord + (itemCount % kBitsPerWord != 0 ? 1 : 0);
}

// Index of the first bitmap word in [from, to) with a free slot, or to.
uint32_t findFreeWord(const uint32_t* bitmap, uint32_t from, uint32_t to)
{
    while (from < to && bitmap[from] == 0)
        ++from;
    return from;
}

} // namespace

MMBucketContext::MMBucketContext(uint32_t wordsPerItem)
    : itemWords(wordsPerItem), itemCount(0), slots(nullptr), buffer(nullptr), searchStart(0)
{
}

MMBucketContext::~MMBucketContext()
{
    std::free(buffer);
}

uint32_t MMBucketContext::Resize(uint32_t count)
{
    std::free(buffer);
    Return();
    const uint32_t words = wordsFor(itemWords, count);
    if (words == UINT32_MAX) return 1;
    void* block = std::malloc((words != 0 ? words : 1) * sizeof(uint32_t));
    if (block == nullptr) return 1;
    Borrow(static_cast<uint32_t*>(block), count);
    return 0;
}

void MMBucketContext::Borrow(uint32_t* block, uint32_t count)
{
    const uint32_t bitmapWords = bitmapWordsFor(count);
    buffer = block;
    slots = buffer + bitmapWords;
    itemCount = count;
    searchStart = 0;
    std::memset(buffer, 0xFF, bitmapWords * sizeof(uint32_t));
    // Bits beyond the last slot are no slots.
    if (count % kBitsPerWord != 0) buffer[bitmapWords - 1] = (1u << (count % kBitsPerWord)) - 1;
    for (uint32_t i = 0; i < count; ++i)
        slots[i * (itemWords + 1)] = i;
}

void MMBucketContext::Return()
{
    buffer = nullptr;
    slots = nullptr;
    itemCount = 0;
    searchStart = 0;
}

uint32_t MMBucketContext::wordsFor(uint32_t wordsPerItem, uint32_t count)
{
    const uint64_t slotWords = uint64_t{wordsPerItem} + 1;
    const uint32_t bitmapWords = bitmapWordsFor(count);
    if (slotWords * count + bitmapWords > UINT32_MAX / sizeof(uint32_t)) return UINT32_MAX;
    return static_cast<uint32_t>(slotWords * count + bitmapWords);
}

void* MMBucketContext::Alloc()
{
    if (buffer == nullptr) return nullptr;
    const uint32_t end = bitmapWordsFor(itemCount);
    uint32_t word = findFreeWord(buffer, searchStart, end);
    if (word == end) {
        word = findFreeWord(buffer, 0, searchStart);
        if (word == searchStart) return nullptr;
    }
    const uint32_t bit = static_cast<uint32_t>(__builtin_ctz(buffer[word]));
    buffer[word] &= ~(1u << bit);
    return slots + (word * kBitsPerWord + bit) * (itemWords + 1) + 1;
}

void MMBucketContext::DeAlloc(void* item)
{
    const uint32_t index = static_cast<uint32_t*>(item)[-1];
    buffer[index / kBitsPerWord] |= 1u << (index % kBitsPerWord);
}
