// SPDX-License-Identifier: MIT
// The scratch allocator of the drawing context: a stack of arrays in a chain of heap blocks.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)

// Every temporary array of the drawing code is taken from here and given back in reverse order, so
// after the first operation of a given size the stack makes no further heap calls: when nothing
// lies on it any more, its first block is replaced by one as large as the greatest depth seen.
// Until then each new block doubles the room.
//
// Sizes are counted in words. A word has the size of a pointer, so that every allocation is aligned
// for pointers, and holds 32 bits of data: with 8-byte pointers, an array of n 32-bit numbers fills
// only the first half of its n words. The counts are the same on every host.
//
// A block, in words, with two allocations of n and m words in it:
//
//     0        1        2        3        4   5        5+n 6+n      top index       end
//     +--------+--------+--------+--------+---+--------+---+--------+---------------+-------+
//     | block  | block  | words  | top    | n | n      | m | m      | free words    | spare |
//     | before | behind | free   | index  |   | words  |   | words  |               | words |
//     +--------+--------+--------+--------+---+--------+---+--------+---------------+-------+
//       header                             size and data of each
//
// An allocation of one word more than are free is admitted; with its size word it ends two words
// beyond the free ones, which is what the two spare words are for.
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

    // Room for n words, or null when the heap is exhausted (the stack is then unchanged). The word
    // before it holds n.
    void* Alloc(uint32_t n);

    // Gives back the most recent allocation; null is accepted.
    void DeAlloc(void* p);

    // Leaves the most recent allocation behind for good; null is accepted. usedWords goes on
    // counting its words, but their room serves others again, and the stack counts as one on which
    // nothing lies when nothing else does.
    void Abandon(void* p);

    // Makes the most recent allocation n words long, keeping its contents, moving it when it has
    // to. Returns where it is now, or null when the heap is exhausted (it is then given back).
    void* ReAlloc(void* p, uint32_t n);
};

#pragma GCC visibility pop
