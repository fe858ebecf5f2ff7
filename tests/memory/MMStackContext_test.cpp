// SPDX-License-Identifier: MIT
#include "memory/MMStackContext.h"

#include "memory/ScratchArray.h"
#include "tests/support/FailingHeap.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

namespace {

struct Stack : MMStackContext {
    explicit Stack(uint32_t capacity) { Create(capacity); }
    ~Stack() { Destroy(); }
    Stack(const Stack&) = delete;
    Stack& operator=(const Stack&) = delete;
};

// One allocation as the test remembers it, filled with a pattern of its own.
struct Held {
    void** words;
    std::vector<void*> pattern; // with 8-byte pointers a word has room for one

    Held(void* p, uint32_t count, uint32_t pattern)
        : words(static_cast<void**>(p)),
          pattern(count, reinterpret_cast<void*>(uintptr_t{pattern} * 0x01000001u))
    {
        std::copy(this->pattern.begin(), this->pattern.end(), words);
    }
    uint32_t size() const { return static_cast<uint32_t>(pattern.size()); }
    bool isAt(const void* p, uint32_t count) const
    {
        return std::equal(pattern.begin(), pattern.begin() + std::min(count, size()),
                          static_cast<void* const*>(p));
    }
};

// Now and then the heap refuses: the first block, a spill, or the larger block which an empty stack
// asks for. Absurd sizes are refused by the stack. What cannot be moved is given back.
TEST(MMStackContext, KeepsWhatItHolds)
{
    constexpr uint32_t kAbsurd[] = {0x80000000, 0xFFFFFFF0, 0xFFFFFFFB, 0xFFFFFFFE, 0xFFFFFFFF};
    for (uint32_t seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        FailingHeap heap;
        heap.failAt(seed % 16 == 0 ? 1 : 0);
        Stack stack(random() % 40);
        std::vector<Held> held;
        uint32_t used = 0, peak = 0;
        for (int step = 0; step < 400; ++step) {
            const uint32_t choice = random() % 8, kind = random() % 32;
            const bool absurd = kind == 0, refuses = kind == 1;
            const uint32_t n = absurd ? kAbsurd[step % 5] : random() % (kind < 6 ? 90 : 12);
            heap.failAt(refuses ? 1 + step % 2 : 0);
            const bool grows = held.empty() || choice < 3, moves = !grows && choice < 5;
            void* p = grows ? stack.Alloc(n) : nullptr;
            if (!grows) {
                const Held last = held.back();
                held.pop_back();
                used -= last.size() + 1;
                ASSERT_TRUE(last.isAt(last.words, last.size()));
                if (moves) p = stack.ReAlloc(last.words, n);
                if (!moves) stack.DeAlloc(last.words);
                ASSERT_TRUE(p == nullptr || last.isAt(p, n));
            }
            if (p != nullptr) {
                held.emplace_back(p, n, random());
                used += n + 1;
                ASSERT_EQ(reinterpret_cast<uintptr_t>(p) % sizeof(void*), 0u);
                ASSERT_GE(stack.peakWords, grows ? used : 0);
            }
            ASSERT_TRUE(p != nullptr ? !absurd : absurd || refuses || !(grows || moves)) << step;
            peak = std::max(peak, used);
            ASSERT_EQ(stack.usedWords, used);
            ASSERT_LE(stack.peakWords, peak); // growing in place does not count
        }
        for (; !held.empty(); held.pop_back())
            stack.DeAlloc(held.back().words);
        stack.DeAlloc(nullptr);
        EXPECT_EQ(stack.usedWords, 0u);
        EXPECT_LE(heap.liveBlocks(), 1);
    }
}

TEST(MMStackContext, AsksTheHeapForTheDepthSeenBefore)
{
    FailingHeap heap;
    Stack stack(10);
    for (const uint32_t calls : {3u, 4u, 4u}) { // two spills, then one larger first block
        void* first = stack.Alloc(4);
        void* second = stack.Alloc(30);
        void* third = stack.Alloc(50);
        for (void* p : {third, second, first})
            stack.DeAlloc(p);
        EXPECT_EQ(heap.calls(), calls);
        EXPECT_EQ(heap.liveBlocks(), 1);
    }
    EXPECT_EQ(stack.peakWords, 5u + 31u + 51u);
    stack.Alloc(80);               // leaves six of the 87
    stack.DeAlloc(stack.Alloc(7)); // one word more than are free is admitted
    EXPECT_EQ(heap.calls(), 4u);
    stack.DeAlloc(stack.Alloc(8));
    EXPECT_EQ(heap.calls(), 5u);
}

// The size is read in the whole word, whatever the memory held before.
TEST(MMStackContext, TheWordBeforeAnAllocationHoldsItsSize)
{
    Stack stack(40);
    std::memset(stack.Alloc(39), 0xEE, 39 * sizeof(void*));
    stack.DeAlloc(static_cast<void**>(static_cast<void*>(stack.firstBlock)) + 5);
    uintptr_t* words = static_cast<uintptr_t*>(stack.Alloc(3));
    EXPECT_EQ(words[-1], 3u);
    words = static_cast<uintptr_t*>(stack.ReAlloc(words, 7));
    EXPECT_EQ(words[-1], 7u);
    stack.DeAlloc(words);
}

TEST(MMStackContext, ADepthNeverSeenBeforeTakesFewBlocks)
{
    FailingHeap heap;
    {
        Stack stack(10);
        for (int i = 0; i < 2000; ++i)
            stack.Alloc(4);
        EXPECT_LE(heap.calls(), 11u); // 10 words, doubled until 10,000 fit
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
}

// What is left behind keeps nothing else from finding its room without the heap.
TEST(MMStackContext, AbandonedWordsAreCountedAndNothingMore)
{
    FailingHeap heap;
    Stack stack(20);
    const auto draw = [&stack](uint32_t depth) {
        void* below = stack.Alloc(depth / 2);
        stack.Abandon(stack.Alloc(2));
        void* above = stack.Alloc(depth / 2);
        std::memset(above, 0xEE, depth / 2 * sizeof(void*));
        stack.DeAlloc(above);
        stack.DeAlloc(below);
    };
    draw(500);
    draw(500);
    heap.failAt(0); // counts anew
    for (uint32_t n = 3; n <= 1000; ++n) {
        draw(500);
        ASSERT_EQ(stack.usedWords, n * 3);
    }
    EXPECT_EQ(heap.calls(), 0u);
    EXPECT_EQ(heap.liveBlocks(), 1);
    stack.Abandon(nullptr);
    EXPECT_EQ(stack.usedWords, 3000u);
}

// An operation may leave a block behind; what lies below it is still given back properly.
TEST(MMStackContext, ReleasesBelowAForgottenAllocation)
{
    FailingHeap heap;
    {
        Stack stack(20);
        void* below = stack.Alloc(10);
        stack.Alloc(30); // spills, and is forgotten
        stack.DeAlloc(below);
        EXPECT_EQ(stack.usedWords, 31u);
        stack.DeAlloc(std::memset(stack.Alloc(50), 0xEE, 50 * sizeof(void*)));
        EXPECT_EQ(stack.usedWords, 31u);
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
}

TEST(ScratchArray, CountsWordsAlikeOnAllHosts)
{
    struct PointerAndCount {
        void* pointer;
        uint32_t count;
    };
    EXPECT_EQ(scratchWordsFor<uint32_t>(7), 7u);
    EXPECT_EQ(scratchWordsFor<PointerAndCount>(7), 14u);
    EXPECT_EQ(scratchWordsFor<uint8_t>(9), 3u);
    EXPECT_EQ(scratchWordsFor<PointerAndCount>(0xFFFFFFFF), 0xFFFFFFFFu);
}

} // namespace
