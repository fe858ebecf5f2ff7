#include "memory/MMStackContext.h"

#include "memory/ScratchArray.h"
#include "tests/support/FailingHeap.h"

#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

namespace {

// With 8-byte pointers a word has room for one.
constexpr size_t kWordBytes = sizeof(void*);

struct Stack : MMStackContext {
    explicit Stack(uint32_t capacity) { Create(capacity); }
    ~Stack() { std::free(firstBlock); }
};

// One allocation as the test remembers it, filled with a pattern of its own.
struct Held {
    uint8_t* bytes;
    uint32_t words;
    uint8_t pattern;

    Held(void* p, uint32_t n, uint8_t fill)
        : bytes(static_cast<uint8_t*>(p)), words(n), pattern(fill)
    {
        write();
    }
    void write() const { std::memset(bytes, pattern, words * kWordBytes); }
    bool isIntact(uint32_t upTo) const
    {
        for (size_t i = 0; i < upTo * kWordBytes; ++i)
            if (bytes[i] != pattern) return false;
        return true;
    }
};

// What the stack's blocks should look like, in words: one word more than its size fits into a
// block, which then takes nothing more, and an empty stack replaces a first block below the peak.
class Model {
public:
    explicit Model(uint32_t capacity) : blocks_{{capacity, 0}} {}

    void alloc(uint32_t n)
    {
        if (used == 0 && peak > blocks_.back().free) blocks_ = {{peak, 0}};
        if (blocks_.back().free < 0 || n > blocks_.back().free + 1) {
            const uint32_t size = peak > used + n + 4 ? peak - used : n + 5;
            blocks_.push_back({size - 4, 0});
        }
        move(n + 1);
        if (used > peak) peak = used;
    }
    void deAlloc(uint32_t n)
    {
        move(-int64_t{n} - 1);
        if (blocks_.size() > 1 && blocks_.back().top == 0) blocks_.pop_back();
    }
    void reAlloc(uint32_t m, uint32_t n)
    {
        const bool leavesBlock = int64_t{n} - m > blocks_.back().free + 2;
        if (used + m + 1 < n || leavesBlock) {
            deAlloc(m);
            alloc(n);
        } else {
            move(int64_t{n} - m);
        }
    }
    size_t blockCount() const { return blocks_.size(); }

    uint32_t used = 0;
    uint32_t peak = 0;

private:
    struct Block {
        int64_t free;
        int64_t top;
    };
    void move(int64_t words)
    {
        blocks_.back().free -= words;
        blocks_.back().top += words;
        used += static_cast<uint32_t>(words);
    }
    std::vector<Block> blocks_;
};

TEST(MMStackContext, FollowsTheModelThroughRandomOperations)
{
    for (uint32_t seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const uint32_t capacity = random() % 40;
        FailingHeap heap;
        {
            Stack stack(capacity);
            Model model(capacity);
            std::vector<Held> held;
            for (int step = 0; step < 400; ++step) {
                const uint32_t n = random() % (random() % 8 == 0 ? 90 : 12);
                const uint8_t pattern = static_cast<uint8_t>(random());
                const uint32_t choice = random() % 8;
                if (held.empty() || choice < 3) {
                    model.alloc(n);
                    void* p = stack.Alloc(n);
                    ASSERT_NE(p, nullptr);
                    ASSERT_EQ(reinterpret_cast<uintptr_t>(p) % sizeof(void*), 0u);
                    held.push_back({p, n, pattern});
                } else if (choice < 5) {
                    const Held last = held.back();
                    model.reAlloc(last.words, n);
                    void* p = stack.ReAlloc(last.bytes, n);
                    ASSERT_NE(p, nullptr);
                    held.back().bytes = static_cast<uint8_t*>(p);
                    ASSERT_TRUE(held.back().isIntact(n < last.words ? n : last.words));
                    held.back() = {p, n, pattern};
                } else {
                    ASSERT_TRUE(held.back().isIntact(held.back().words));
                    model.deAlloc(held.back().words);
                    stack.DeAlloc(held.back().bytes);
                    held.pop_back();
                }
                ASSERT_EQ(stack.usedWords, model.used);
                ASSERT_EQ(stack.peakWords, model.peak);
                ASSERT_EQ(static_cast<size_t>(heap.liveBlocks()), model.blockCount());
            }
            while (!held.empty()) {
                ASSERT_TRUE(held.back().isIntact(held.back().words));
                stack.DeAlloc(held.back().bytes);
                held.pop_back();
            }
            EXPECT_EQ(stack.usedWords, 0u);
            EXPECT_EQ(stack.firstBlock, stack.currentBlock);
        }
        EXPECT_EQ(heap.liveBlocks(), 0);
    }
}

TEST(MMStackContext, AcceptsNullAndRefusesAbsurdSizes)
{
    Stack stack(16);
    stack.DeAlloc(nullptr);
    EXPECT_EQ(stack.usedWords, 0u);
    for (uint32_t n : {0x80000000u, 0xFFFFFFF0u, 0xFFFFFFFBu, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        EXPECT_EQ(stack.Alloc(n), nullptr) << n;
        EXPECT_EQ(stack.usedWords, 0u) << n;
        EXPECT_EQ(stack.peakWords, 0u) << n;
        void* p = stack.Alloc(3);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(stack.ReAlloc(p, n), nullptr) << n; // and p is given back
        EXPECT_EQ(stack.usedWords, 0u) << n;
        stack.peakWords = 0;
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
            void* large = stack.Alloc(40);
            if (small == nullptr || large == nullptr) {
                stack.DeAlloc(large);
                stack.DeAlloc(small);
            } else {
                large = stack.ReAlloc(large, 80);
                stack.DeAlloc(large);
                stack.DeAlloc(small);
            }
            EXPECT_EQ(stack.usedWords, 0u);
        }
    });
    EXPECT_GE(calls, 4u);

    // A failed consolidation keeps the old block.
    Stack stack(4);
    stack.DeAlloc(stack.Alloc(60));
    FailingHeap heap;
    heap.failAt(1);
    void* p = stack.Alloc(3);
    EXPECT_NE(p, nullptr);
    EXPECT_EQ(heap.calls(), 1u);
    stack.DeAlloc(p);
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
        Held next(stack.Alloc(50), 50, 1);
        EXPECT_TRUE(next.isIntact(50));
        stack.DeAlloc(next.bytes);
        EXPECT_EQ(stack.usedWords, 31u);
        std::free(stack.currentBlock == stack.firstBlock ? nullptr : stack.currentBlock);
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

TEST(ScratchArray, GivesItsWordsBack)
{
    Stack stack(64);
    {
        ScratchArray<uint32_t> outer(stack, 10);
        ASSERT_TRUE(outer);
        outer[9] = 5;
        ScratchArray<uint32_t> inner(stack, 100);
        ASSERT_TRUE(inner);
        inner[99] = 7;
        ASSERT_TRUE(inner.resize(4000));
        EXPECT_EQ(inner[99], 7u);
        EXPECT_EQ(outer[9], 5u);
        ScratchArray<uint32_t> absurd(stack, 0xFFFFFFFF);
        EXPECT_FALSE(absurd);
    }
    EXPECT_EQ(stack.usedWords, 0u);
}

} // namespace
