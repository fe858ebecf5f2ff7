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

    void fill(void* p, uint32_t count, std::mt19937& random)
    {
        words = static_cast<void**>(p);
        pattern.assign(count, reinterpret_cast<void*>(uintptr_t{random()} * 0x01000001u));
        std::copy(pattern.begin(), pattern.end(), words);
    }
    bool isIntact(size_t count) const { return std::equal(words, words + count, pattern.begin()); }
};

TEST(MMStackContext, KeepsWhatItHolds)
{
    for (uint32_t seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        FailingHeap heap;
        Stack stack(random() % 40);
        std::vector<Held> held;
        uint32_t used = 0, peak = 0;
        for (int step = 0; step < 400; ++step) {
            const uint32_t n = random() % (random() % 8 == 0 ? 90 : 12);
            const uint32_t choice = random() % 8;
            if (held.empty() || choice < 3) {
                void* p = stack.Alloc(n);
                ASSERT_NE(p, nullptr);
                ASSERT_EQ(reinterpret_cast<uintptr_t>(p) % sizeof(void*), 0u);
                held.emplace_back().fill(p, n, random);
                used += n + 1;
                ASSERT_GE(stack.peakWords, used);
            } else if (choice < 5) {
                Held& last = held.back();
                const uint32_t before = static_cast<uint32_t>(last.pattern.size());
                used += n - before;
                last.words = static_cast<void**>(stack.ReAlloc(last.words, n));
                ASSERT_NE(last.words, nullptr);
                ASSERT_TRUE(last.isIntact(std::min(n, before)));
                last.fill(last.words, n, random);
            } else {
                ASSERT_TRUE(held.back().isIntact(held.back().pattern.size()));
                used -= static_cast<uint32_t>(held.back().pattern.size()) + 1;
                stack.DeAlloc(held.back().words);
                held.pop_back();
            }
            peak = std::max(peak, used);
            ASSERT_EQ(stack.usedWords, used);
            ASSERT_LE(stack.peakWords, peak); // growing in place does not count
        }
        for (; !held.empty(); held.pop_back())
            stack.DeAlloc(held.back().words);
        EXPECT_EQ(stack.usedWords, 0u);
        EXPECT_EQ(heap.liveBlocks(), 1);
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

TEST(MMStackContext, AcceptsNullAndRefusesAbsurdSizes)
{
    Stack stack(16);
    stack.DeAlloc(nullptr);
    for (uint32_t n : {0x80000000u, 0xFFFFFFF0u, 0xFFFFFFFBu, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        EXPECT_EQ(stack.Alloc(n), nullptr) << n;
        EXPECT_EQ(stack.ReAlloc(stack.Alloc(3), n), nullptr) << n; // and what it was is given back
        EXPECT_EQ(stack.usedWords, 0u) << n;
        EXPECT_EQ(stack.peakWords, 4u) << n;
    }
}

// Every refusal leaves a usable stack: the first block's, a spill's and that of the larger block
// which an empty stack asks for.
TEST(MMStackContext, SurvivesARefusingHeap)
{
    const uint32_t calls = failEachAllocation([] {
        Stack stack(8);
        for (int round = 0; round < 2; ++round) {
            void* small = stack.Alloc(6);
            EXPECT_TRUE(small != nullptr || round == 0);
            void* large = stack.Alloc(40);
            if (large != nullptr) large = stack.ReAlloc(large, 80);
            stack.DeAlloc(large);
            stack.DeAlloc(small);
            EXPECT_EQ(stack.usedWords, 0u);
        }
    });
    EXPECT_GE(calls, 4u);
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
    EXPECT_EQ(scratchWordsFor<void*>(7), 7u);
    EXPECT_EQ(scratchWordsFor<PointerAndCount>(7), 14u);
    EXPECT_EQ(scratchWordsFor<uint16_t>(3), 2u);
    EXPECT_EQ(scratchWordsFor<uint8_t>(9), 3u);
    EXPECT_EQ(scratchWordsFor<uint64_t>(0), 0u);
    EXPECT_EQ(scratchWordsFor<PointerAndCount>(0xFFFFFFFF), 0xFFFFFFFFu);
}

} // namespace
