// SPDX-License-Identifier: MIT
// The scratch allocator of the drawing context.
#include "memory/MMStackContext.h"

#include <cstdlib>
#include <cstring>

namespace {

using Word = uintptr_t;

constexpr uint32_t kHeaderWords = 4;

// Room beyond a block's capacity: the fit test admits one word more than are free, and the size
// word of that allocation pushes its end out by another.
constexpr uint32_t kSpareWords = 2;

uint32_t sizeOf(const void* p)
{
    return static_cast<uint32_t>(static_cast<const Word*>(p)[-1]);
}

} // namespace

// The header of a block, which the header file draws. Its counts have 32 bits on every host.
struct MMStackContext::Block {
    Block* prevBlock; // null for the first block
    Block* nextBlock; // null for the last
    Word freeWords;   // below zero when the last allocation reached into the spare words
    Word topIndex;    // of the next free word, from the block's start; kHeaderWords when empty

    Word* words() { return reinterpret_cast<Word*>(this); }

    int32_t room() const { return static_cast<int32_t>(freeWords); }

    uint32_t capacity() const { return static_cast<uint32_t>(topIndex + freeWords) - kHeaderWords; }

    bool isEmpty() const { return topIndex == kHeaderWords; }

    bool admits(uint32_t n) const { return room() >= 0 && n <= freeWords + 1; }

    bool holds(const void* p) const
    {
        const uintptr_t start = reinterpret_cast<uintptr_t>(this);
        const uintptr_t address = reinterpret_cast<uintptr_t>(p);
        const uint64_t words = uint64_t{kHeaderWords} + capacity() + kSpareWords;
        return address >= start && address - start < words * sizeof(Word);
    }

    // Moves the top by a number of words: up for an allocation, down for a release.
    void moveTop(int64_t count)
    {
        topIndex = static_cast<uint32_t>(static_cast<int64_t>(topIndex) + count);
        freeWords = static_cast<uint32_t>(static_cast<int64_t>(freeWords) - count);
    }

    void* push(uint32_t n)
    {
        Word* size = words() + topIndex;
        *size = n;
        moveTop(int64_t{n} + 1);
        return size + 1;
    }

    // An empty block with room for capacity words, or null.
    static Block* make(uint64_t capacity)
    {
        const uint64_t bytes = (kHeaderWords + capacity + kSpareWords) * sizeof(Word);
        if (capacity > INT32_MAX || bytes > SIZE_MAX) return nullptr;
        Block* block = static_cast<Block*>(std::malloc(static_cast<size_t>(bytes)));
        if (block == nullptr) return nullptr;
        block->prevBlock = nullptr;
        block->nextBlock = nullptr;
        block->freeWords = static_cast<uint32_t>(capacity);
        block->topIndex = kHeaderWords;
        return block;
    }
};

namespace {

using Block = MMStackContext::Block;

// Replaces the first block of a stack on which nothing lies by one that holds the greatest depth
// seen. Words that were abandoned are still counted, in usedWords as in peakWords, but take no
// room. Returns the block that is no longer used, or null; a refusal by the heap keeps the old one.
Block* consolidate(MMStackContext& stack)
{
    Block* first = stack.firstBlock;
    if (first == nullptr || stack.currentBlock != first || !first->isEmpty()) return nullptr;
    const int64_t depth = int64_t{stack.peakWords} - stack.usedWords;
    if (depth <= first->room()) return nullptr;
    Block* larger = Block::make(static_cast<uint64_t>(depth));
    if (larger == nullptr) return nullptr;
    stack.firstBlock = larger;
    stack.currentBlock = larger;
    return first;
}

// Words that a block must have, its header included, to take n words and the rest of the depth that
// has been reached before.
uint64_t wordsForSpill(const MMStackContext& stack, uint32_t n)
{
    const bool seenDeeper = stack.peakWords > uint64_t{stack.usedWords} + n + 4;
    return seenDeeper ? stack.peakWords - stack.usedWords : uint64_t{n} + 5;
}

uint64_t capacityOfAll(const MMStackContext& stack)
{
    uint64_t capacity = 0;
    for (const Block* block = stack.currentBlock; block != nullptr; block = block->prevBlock)
        capacity += block->capacity();
    return capacity;
}

// A new block behind the current one. It has at least the capacity of all others together, so that
// a depth never seen before takes few blocks.
bool spill(MMStackContext& stack, uint32_t n)
{
    const uint64_t needed = wordsForSpill(stack, n) - kHeaderWords;
    const uint64_t present = capacityOfAll(stack);
    Block* block = Block::make(needed > present ? needed : present);
    if (block == nullptr) return false;
    block->prevBlock = stack.currentBlock;
    (stack.currentBlock != nullptr ? stack.currentBlock->nextBlock : stack.firstBlock) = block;
    stack.currentBlock = block;
    return true;
}

// Puts n words into the current block, which admits them.
[[gnu::always_inline]] inline void* put(MMStackContext& stack, uint32_t n)
{
    void* p = stack.currentBlock->push(n);
    stack.usedWords += n + 1;
    if (stack.usedWords > stack.peakWords) stack.peakWords = stack.usedWords;
    return p;
}

bool isWithinRange(const MMStackContext& stack, uint32_t n)
{
    return uint64_t{stack.usedWords} + n + 1 <= INT32_MAX;
}

[[gnu::noinline]] void* place(MMStackContext& stack, uint32_t n)
{
    if (!isWithinRange(stack, n)) return nullptr;
    const bool fits = stack.currentBlock != nullptr && stack.currentBlock->admits(n);
    return fits || spill(stack, n) ? put(stack, n) : nullptr;
}

// Takes an allocation of n words off the block it lies in. That is the current block, unless an
// operation has left an allocation of its own behind. Returns the chain of spill blocks that became
// empty, linked through prevBlock, for the caller to free.
[[gnu::noinline]] Block* pop(MMStackContext& stack, const void* p, uint32_t n)
{
    Block* block = stack.currentBlock;
    while (block->prevBlock != nullptr && !block->holds(p))
        block = block->prevBlock;
    block->moveTop(-(int64_t{n} + 1));
    stack.usedWords -= n + 1;

    Block* emptied = nullptr;
    while (stack.currentBlock != stack.firstBlock && stack.currentBlock->isEmpty()) {
        Block* previous = stack.currentBlock->prevBlock;
        stack.currentBlock->prevBlock = emptied;
        emptied = stack.currentBlock;
        stack.currentBlock = previous;
        stack.currentBlock->nextBlock = nullptr;
    }
    return emptied;
}

[[gnu::noinline]] void freeChain(Block* block)
{
    while (block != nullptr) {
        Block* next = block->prevBlock;
        std::free(block);
        block = next;
    }
}

} // namespace

void MMStackContext::Create(uint32_t capacity)
{
    static_assert(sizeof(Block) == kHeaderWords * sizeof(Word), "the header is four words");
    usedWords = 0;
    peakWords = 0;
    firstBlock = Block::make(capacity);
    currentBlock = firstBlock;
}

void MMStackContext::Destroy()
{
    freeChain(currentBlock);
}

void* MMStackContext::Alloc(uint32_t n)
{
    // The usual case: something lies in the current block, and there is room behind it.
    Block* block = currentBlock;
    if (block != nullptr && !block->isEmpty() && block->admits(n) && isWithinRange(*this, n))
        return put(*this, n);
    freeChain(consolidate(*this));
    return place(*this, n);
}

void MMStackContext::DeAlloc(void* p)
{
    if (p == nullptr) return;
    const uint32_t n = sizeOf(p);
    if (currentBlock->prevBlock != nullptr) return freeChain(pop(*this, p, n));
    currentBlock->moveTop(-(int64_t{n} + 1)); // the usual case: there is but one block
    usedWords -= n + 1;
}

void MMStackContext::Abandon(void* p)
{
    if (p == nullptr) return;
    const uint32_t n = sizeOf(p);
    freeChain(pop(*this, p, n));
    usedWords += n + 1;
}

void* MMStackContext::ReAlloc(void* p, uint32_t n)
{
    if (p == nullptr) return Alloc(n);
    const uint32_t m = sizeOf(p);
    const int64_t growth = int64_t{n} - m;
    const int64_t room = int64_t{currentBlock->room()} + kSpareWords;
    if (uint64_t{usedWords} + m + 1 >= n && growth <= room && currentBlock->holds(p)) {
        currentBlock->moveTop(growth);
        usedWords += n - m;
        static_cast<Word*>(p)[-1] = n;
        return p;
    }
    // The old words stay readable until they are copied: what releasing and consolidating leave
    // over is freed afterwards.
    Block* emptied = pop(*this, p, m);
    Block* replaced = consolidate(*this);
    void* moved = place(*this, n);
    if (moved != nullptr) std::memmove(moved, p, (m < n ? m : n) * sizeof(Word));
    freeChain(replaced);
    freeChain(emptied);
    return moved;
}
