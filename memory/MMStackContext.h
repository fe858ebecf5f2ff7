// SPDX-License-Identifier: MIT
// The scratch allocator of the drawing context: a stack of arrays in a chain of heap blocks.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)

// Every temporary array of the drawing code is taken from here and given back in reverse order, so
// after the first operation of a given size the stack makes no further heap calls: when it is empty
// again, its first block is replaced by one as large as the greatest depth seen.
//
// Sizes are counted in words. A word holds 32 bits of data; with 8-byte pointers it takes eight
// bytes of room so that every allocation is aligned for pointers, and the counts stay the same on
// every host.
class MMStackContext {
public:
    struct Block;

    uint32_t usedWords;  // in use over all blocks, each allocation with its size word
    uint32_t peakWords;  // the largest usedWords has been
    Block* firstBlock;   // null when the heap refused it
    Block* currentBlock; // the last block of the chain, which serves the next allocation

    // Starts an empty stack whose first block has room for capacity words.
    void Create(uint32_t capacity);

    // Frees all blocks, also those of allocations that were never given back. For an empty stack
    // free(firstBlock) does the same.
    void Destroy();

    // Room for n words, or null when the heap is exhausted (the stack is then unchanged).
    void* Alloc(uint32_t n);

    // Gives back the most recent allocation; null is accepted.
    void DeAlloc(void* p);

    // Makes the most recent allocation n words long, keeping its contents, moving it when it has
    // to. Returns where it is now, or null when the heap is exhausted.
    void* ReAlloc(void* p, uint32_t n);

private:
    [[gnu::visibility("hidden")]] Block* consolidate();
    [[gnu::visibility("hidden")]] bool spill(uint32_t n);
    [[gnu::visibility("hidden")]] void* place(uint32_t n);
    [[gnu::visibility("hidden")]] Block* pop(const void* p, uint32_t n);
    [[gnu::visibility("hidden")]] static void freeChain(Block* block);
};

#pragma GCC visibility pop
