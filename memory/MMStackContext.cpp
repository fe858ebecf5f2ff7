// SPDX-License-Identifier: MIT
// The scratch allocator of the drawing context.
#include "memory/MMStackContext.h"

#include <cstdlib>
#include <cstring>

namespace {

// One word with room for a pointer, so that every allocation is aligned for pointers.
union Word {
    uint32_t value;
    void* pointer;
};

constexpr uint32_t kHeaderWords = 4;

// Room beyond a block's capacity: the fit test admits one word more than are free, and the size
// word of that allocation pushes its end out by another.
constexpr uint32_t kSpareWords = 2;

} // namespace

// A heap block: four words of header, then each allocation of n words behind a word that holds n.
struct MMStackContext::Block {
    Block* prevBlock; // null for the first block
    Block* nextBlock; // null for the last
    Word freeWords;   // below zero when the last allocation reached into the spare words
    Word topIndex;    // of the next free word, from the block's start; kHeaderWords when empty

    Word* words() { return reinterpret_cast<Word*>(this); }

    bool admits(uint32_t n) const
    {
        return static_cast<int32_t>(freeWords.value) >= 0 && n <= freeWords.value + 1;
    }

    bool holds(const void* p) const
    {
        const uintptr_t start = reinterpret_cast<uintptr_t>(this);
        const uintptr_t address = reinterpret_cast<uintptr_t>(p);
        const uint32_t capacityEnd = topIndex.value + freeWords.value;
        return address >= start &&
               address - start < (uint64_t{capacityEnd} + kSpareWords) * sizeof(Word);
    }

    void* push(uint32_t n)
    {
        Word* size = words() + topIndex.value;
        size->value = n;
        grow(n + 1);
        return size + 1;
    }

    void grow(uint32_t count)
    {
        topIndex.value += count;
        freeWords.value -= count;
    }

    bool isEmpty() const { return topIndex.value == kHeaderWords; }

    // An empty block with room for capacity words, or null.
    static Block* make(uint64_t capacity)
    {
        const uint64_t bytes = (kHeaderWords + capacity + kSpareWords) * sizeof(Word);
        if (capacity > INT32_MAX || bytes > SIZE_MAX) return nullptr;
        Block* block = static_cast<Block*>(std::malloc(static_cast<size_t>(bytes)));
        if (block == nullptr) return nullptr;
        block->prevBlock = nullptr;
        block->nextBlock = nullptr;
        block->freeWords.value = static_cast<uint32_t>(capacity);
        block->topIndex.value = kHeaderWords;
        return block;
    }
};

namespace {

uint32_t sizeOf(const void* p)
{
    return static_cast<const Word*>(p)[-1].value;
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

// Replaces the first block of an empty stack by one that holds the greatest depth seen. Returns the
// block that is no longer used, or null; a refusal by the heap keeps the old block.
MMStackContext::Block* MMStackContext::consolidate()
{
    if (usedWords != 0 || currentBlock == nullptr || peakWords <= currentBlock->freeWords.value)
        return nullptr;
    Block* larger = Block::make(peakWords);
    if (larger == nullptr) return nullptr;
    Block* replaced = firstBlock;
    firstBlock = larger;
    currentBlock = larger;
    return replaced;
}

// A new block behind the current one, large enough for n words and for the rest of the depth that
// has been reached before.
bool MMStackContext::spill(uint32_t n)
{
    const bool seenDeeper = peakWords > uint64_t{usedWords} + n + 4;
    const uint64_t words = seenDeeper ? peakWords - usedWords : uint64_t{n} + 5;
    Block* block = Block::make(words - kHeaderWords);
    if (block == nullptr) return false;
    block->prevBlock = currentBlock;
    if (currentBlock != nullptr)
        currentBlock->nextBlock = block;
    else
        firstBlock = block;
    currentBlock = block;
    return true;
}

void* MMStackContext::place(uint32_t n)
{
    if (uint64_t{usedWords} + n + 1 > INT32_MAX) return nullptr;
    if ((currentBlock == nullptr || !currentBlock->admits(n)) && !spill(n)) return nullptr;
    void* p = currentBlock->push(n);
    usedWords += n + 1;
    if (usedWords > peakWords) peakWords = usedWords;
    return p;
}

// Takes an allocation of n words off the block it lies in. That is the current block, unless an
// operation has left an allocation of its own behind. Returns the chain of spill blocks that became
// empty, linked through prevBlock, for the caller to free.
MMStackContext::Block* MMStackContext::pop(const void* p, uint32_t n)
{
    Block* block = currentBlock;
    while (block->prevBlock != nullptr && !block->holds(p))
        block = block->prevBlock;
    block->grow(0u - (n + 1));
    usedWords -= n + 1;

    Block* emptied = nullptr;
    while (currentBlock != firstBlock && currentBlock->isEmpty()) {
        Block* previous = currentBlock->prevBlock;
        currentBlock->prevBlock = emptied;
        emptied = currentBlock;
        currentBlock = previous;
        currentBlock->nextBlock = nullptr;
    }
    return emptied;
}

void MMStackContext::freeChain(Block* block)
{
    while (block != nullptr) {
        Block* next = block->prevBlock;
        std::free(block);
        block = next;
    }
}

void MMStackContext::Destroy()
{
    freeChain(currentBlock);
}

void* MMStackContext::Alloc(uint32_t n)
{
    freeChain(consolidate());
    return place(n);
}

void MMStackContext::DeAlloc(void* p)
{
    if (p == nullptr) return;
    freeChain(pop(p, sizeOf(p)));
}

void* MMStackContext::ReAlloc(void* p, uint32_t n)
{
    if (p == nullptr) return Alloc(n);
    const uint32_t m = sizeOf(p);
    const int64_t growth = int64_t{n} - m;
    const int64_t room = int64_t{static_cast<int32_t>(currentBlock->freeWords.value)} + kSpareWords;
    if (uint64_t{usedWords} + m + 1 >= n && growth <= room && currentBlock->holds(p)) {
        const uint32_t difference = n - m;
        currentBlock->grow(difference);
        usedWords += difference;
        static_cast<Word*>(p)[-1].value = n;
        return p;
    }
    // The old words stay readable until they are copied: what releasing and consolidating leave
    // over is freed afterwards.
    Block* emptied = pop(p, m);
    Block* replaced = consolidate();
    void* moved = place(n);
    if (moved != nullptr) std::memmove(moved, p, (m < n ? m : n) * sizeof(Word));
    freeChain(replaced);
    freeChain(emptied);
    return moved;
}
