// SPDX-License-Identifier: MIT
// A pool of equal-sized items in one heap block, with a bitmap of free slots.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)

// Items come and go in any order, and there is one heap call for all of them, or none when the pool
// borrows its block: the complex polygon rasteriser keeps its active edges in one that borrows
// scratch memory. The lowest free
// slot is always taken first. Sizes are in 32-bit words.
class MMBucketContext {
public:
    explicit MMBucketContext(uint32_t wordsPerItem);
    ~MMBucketContext();
    MMBucketContext(const MMBucketContext&) = delete;
    MMBucketContext& operator=(const MMBucketContext&) = delete;

    // Makes room for count items and drops all that were held. Returns 0, or 1 when the heap
    // refused (the pool is then empty).
    uint32_t Resize(uint32_t count);

    // The same in a block of the caller's, wordsFor(itemWords, count) words long, in place of one
    // from the heap. The pool is empty again, and lets go of the block, when it is returned; that
    // must happen before the pool is resized or ends.
    void Borrow(uint32_t* block, uint32_t count);
    void Return();

    // Words of a pool's block; UINT32_MAX for more than indices of words can name.
    static uint32_t wordsFor(uint32_t wordsPerItem, uint32_t count);

    // An item of itemWords words, or null when none is free.
    void* Alloc();

    // Gives an item of this pool back.
    void DeAlloc(void* item);

    uint32_t itemWords;
    uint32_t itemCount;
    uint32_t* slots;  // slot i starts at i * (itemWords + 1) with its own index; the item follows
    uint32_t* buffer; // the one heap block: bitmap (a set bit is a free slot), then the slots
    uint32_t searchStart; // bitmap word at which Alloc starts to look
};

#pragma GCC visibility pop
