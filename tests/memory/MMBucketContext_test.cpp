#include "memory/MMBucketContext.h"

#include "tests/support/FailingHeap.h"

#include <cstring>
#include <random>
#include <set>
#include <vector>

namespace {

uint32_t slotOf(const MMBucketContext& pool, const void* item)
{
    const auto distance = static_cast<const uint32_t*>(item) - pool.slots;
    EXPECT_EQ(distance % (pool.itemWords + 1), 1);
    return static_cast<uint32_t>(distance) / (pool.itemWords + 1);
}

TEST(MMBucketContext, HandsOutTheLowestFreeSlot)
{
    for (uint32_t count : {1u, 5u, 31u, 32u, 33u, 64u, 100u}) {
        SCOPED_TRACE(count);
        MMBucketContext pool(11);
        ASSERT_EQ(pool.Resize(count), 0u);
        std::mt19937 random(count);
        std::set<uint32_t> freeSlots;
        for (uint32_t i = 0; i < count; ++i)
            freeSlots.insert(i);
        std::vector<void*> held;
        for (int step = 0; step < 2000; ++step) {
            if (held.empty() || random() % 5 < 3) {
                void* item = pool.Alloc();
                if (freeSlots.empty()) {
                    ASSERT_EQ(item, nullptr);
                    continue;
                }
                ASSERT_NE(item, nullptr);
                ASSERT_EQ(slotOf(pool, item), *freeSlots.begin());
                freeSlots.erase(freeSlots.begin());
                std::memset(item, 0xEE, 11 * sizeof(uint32_t));
                held.push_back(item);
            } else {
                const size_t which = random() % held.size();
                freeSlots.insert(slotOf(pool, held[which]));
                pool.DeAlloc(held[which]);
                held.erase(held.begin() + static_cast<std::ptrdiff_t>(which));
            }
        }
    }
}

TEST(MMBucketContext, SearchStartOnlyChangesTheOrder)
{
    MMBucketContext pool(1);
    ASSERT_EQ(pool.Resize(70), 0u);
    pool.searchStart = 1;
    std::set<uint32_t> seen;
    EXPECT_EQ(slotOf(pool, pool.Alloc()), 32u);
    for (int i = 1; i < 70; ++i)
        EXPECT_TRUE(seen.insert(slotOf(pool, pool.Alloc())).second);
    EXPECT_EQ(pool.Alloc(), nullptr);
}

TEST(MMBucketContext, EmptyAndFailedPoolsHandOutNothing)
{
    FailingHeap heap;
    {
        MMBucketContext pool(3);
        EXPECT_EQ(pool.Alloc(), nullptr);
        EXPECT_EQ(pool.Resize(0), 0u);
        EXPECT_EQ(pool.Alloc(), nullptr);
        EXPECT_EQ(pool.Resize(0xFFFFFFFF), 1u);
        EXPECT_EQ(pool.buffer, nullptr);
        EXPECT_EQ(pool.Resize(40), 0u);
        EXPECT_NE(pool.Alloc(), nullptr);
        heap.failAt(1);
        EXPECT_EQ(pool.Resize(40), 1u);
        EXPECT_EQ(pool.buffer, nullptr);
        EXPECT_EQ(pool.Alloc(), nullptr);
        EXPECT_EQ(pool.Resize(2), 0u);
        EXPECT_EQ(slotOf(pool, pool.Alloc()), 0u); // live items are lost
    }
    EXPECT_EQ(heap.liveBlocks(), 0);

    MMBucketContext huge(0xFFFFFFFF);
    EXPECT_EQ(huge.Resize(1), 1u);
}

} // namespace
