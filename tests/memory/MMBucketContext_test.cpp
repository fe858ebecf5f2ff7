// SPDX-License-Identifier: MIT
#include "memory/MMBucketContext.h"

#include "tests/support/FailingHeap.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

namespace {

std::ptrdiff_t slotOf(const MMBucketContext& pool, const void* item)
{
    const auto distance = static_cast<const uint32_t*>(item) - pool.slots;
    EXPECT_EQ(distance % (pool.itemWords + 1), 1);
    return distance / (pool.itemWords + 1);
}

TEST(MMBucketContext, HandsOutTheLowestFreeSlot)
{
    for (uint32_t count : {1u, 5u, 31u, 32u, 33u, 64u, 100u}) {
        SCOPED_TRACE(count);
        MMBucketContext pool(11);
        ASSERT_EQ(pool.Resize(count), 0u);
        std::mt19937 random(count);
        std::vector<void*> held(count); // by slot; null: free
        for (int step = 0; step < 2000; ++step) {
            const auto lowest = std::find(held.begin(), held.end(), nullptr);
            if (random() % 5 < 3) {
                void* item = pool.Alloc();
                ASSERT_EQ(item == nullptr, lowest == held.end());
                if (item == nullptr) continue;
                ASSERT_EQ(slotOf(pool, item), lowest - held.begin());
                std::memset(item, 0xEE, 11 * sizeof(uint32_t));
                *lowest = item;
            } else if (void*& any = held[random() % count]; any != nullptr) {
                pool.DeAlloc(any);
                any = nullptr;
            }
        }
    }
}

TEST(MMBucketContext, SearchStartOnlyChangesTheOrder)
{
    MMBucketContext pool(1);
    ASSERT_EQ(pool.Resize(70), 0u);
    pool.searchStart = 1;
    for (uint32_t i = 0; i < 70; ++i)
        EXPECT_EQ(slotOf(pool, pool.Alloc()), (i + 32) % 70);
    EXPECT_EQ(pool.Alloc(), nullptr);
}

TEST(MMBucketContext, EmptyAndFailedPoolsHandOutNothing)
{
    FailingHeap heap;
    {
        MMBucketContext pool(3), huge(0xFFFFFFFF);
        EXPECT_EQ(pool.Alloc(), nullptr);
        EXPECT_EQ(pool.Resize(0), 0u);
        EXPECT_EQ(pool.Alloc(), nullptr);
        EXPECT_EQ(huge.Resize(1), 1u);
        EXPECT_EQ(pool.Resize(40), 0u);
        EXPECT_NE(pool.Alloc(), nullptr);
        heap.failAt(1);
        EXPECT_EQ(pool.Resize(40), 1u);
        EXPECT_EQ(pool.Alloc(), nullptr);
        EXPECT_EQ(pool.Resize(2), 0u);
        EXPECT_EQ(slotOf(pool, pool.Alloc()), 0); // live items are lost
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
}

} // namespace
