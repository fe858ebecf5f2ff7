// SPDX-License-Identifier: MIT
#include "memory/MMCacheContext.h"

#include "tests/support/FailingHeap.h"

#include <algorithm>
#include <array>
#include <list>
#include <random>
#include <string>

namespace {

using Key = std::array<uint32_t, 6>;

struct Cache : MMCacheContext<48> {
    Cache(uint32_t byteBudget, uint32_t largestEntry) { Create(byteBudget, largestEntry); }
    ~Cache() { Destroy(); }
    Cache(const Cache&) = delete;
    Cache& operator=(const Cache&) = delete;
};

constexpr uint32_t kLargest = 40; // bytes of an entry

std::string contentOf(const void* payload, size_t size)
{
    return {static_cast<const char*>(payload), size};
}

// What the cache should hold: keys and payloads, most recently used first.
struct Model {
    std::list<std::pair<Key, std::string>> entries;
    size_t budget;
    size_t used = 0;

    const std::string* find(const Key& key, bool makeFirst)
    {
        const auto found = std::find_if(entries.begin(), entries.end(),
                                        [&](const auto& entry) { return entry.first == key; });
        if (found == entries.end()) return nullptr;
        if (makeFirst) entries.splice(entries.begin(), entries, found);
        return &found->second;
    }
    const std::string* add(const Key& key, const std::string& payload)
    {
        if (payload.size() > kLargest) return nullptr;
        if (const std::string* found = find(key, false)) return found;
        if (payload.size() > budget) return nullptr;
        for (used += payload.size(); used > budget; entries.pop_back())
            used -= entries.back().second.size();
        entries.emplace_front(key, payload);
        return &entries.front().second;
    }
};

// Few different digits, so that keys share long and short prefixes.
Key someKey(std::mt19937& random)
{
    return {static_cast<uint32_t>(random() % 3 << 28),
            static_cast<uint32_t>(random() % 2 << 28),
            0,
            static_cast<uint32_t>(random() % 2 << 16),
            0,
            static_cast<uint32_t>(random() % 4 << 28 | random() % 2)};
}

// Budgets from one that no payload fits to one for several: all of a path is evicted while a
// neighbour is added under it, and what is too large must evict nothing.
TEST(MMCacheContext, FollowsAListOfKeys)
{
    for (uint32_t seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        FailingHeap heap;
        Model model = {{}, seed * 5};
        Cache cache(seed * 5, kLargest);
        for (int step = 0; step < 300; ++step) {
            const Key key = someKey(random);
            // Every operation starts from the root or from a prefix it resolves itself.
            const uint32_t depth = random() % 6 * 8;
            cache.prefetchNode = cache.root;
            cache.prefetchDepth = 0;
            const bool resolved = depth != 0 && cache.PreFetch(key.data(), depth, 0) == 1;
            ASSERT_EQ(cache.prefetchDepth, resolved ? depth : 0u);
            const uint32_t kind = random() % 8, size = random() % 45, digit = random() % 10;
            std::string payload(size, static_cast<char>('0' + digit));
            const void* source = payload.data();
            if (kind == 0 && cache.lruTail != nullptr) { // a copy of what may have to go for it
                source = cache.lruTail->data;
                payload = contentOf(source, cache.lruTail->size);
            }
            const bool adds = kind < 4;
            const std::string* expected = adds ? model.add(key, payload) : model.find(key, true);
            const void* found = adds ? cache.Add(source, key.data(), uint32_t(payload.size()))
                                     : cache.Get(key.data());
            ASSERT_EQ(found != nullptr, expected != nullptr);
            if (found != nullptr) {
                ASSERT_EQ(contentOf(found, expected->size()), *expected);
            }
            ASSERT_EQ(cache.usedBytes, model.used);
            ASSERT_EQ(static_cast<uint32_t>(heap.liveBlocks()), cache.nodeCount + 1); // the root
        }
        // The order, from both ends. What goes takes all of its nodes along.
        for (const auto& expected : model.entries) {
            MMCacheEntry* first = cache.mruHead;
            ASSERT_NE(first, nullptr);
            ASSERT_EQ(first->prev, nullptr);
            ASSERT_EQ(contentOf(first->data, first->size), expected.second);
            cache.RemoveLeaf(first);
        }
        EXPECT_EQ(cache.lruTail, nullptr);
        if (model.budget >= kLargest) { // a refused payload leaves its path
            EXPECT_EQ(cache.nodeCount, 0u);
        }
        cache.Destroy();
        EXPECT_EQ(heap.liveBlocks(), 0);
    }
}

// Asked for again and again, the latest entry stays the first, and goes when it has become the
// last.
TEST(MMCacheContext, TheLatestEntryIsFoundAndEvictedAsAnyOther)
{
    Cache cache(2 * kLargest, kLargest);
    Key keys[4] = {{1}, {2}, {3}, {4}};
    const char content[kLargest] = "entry";
    cache.Add(content, &keys[0], kLargest);
    cache.Add(content, &keys[1], kLargest);
    for (int i = 0; i < 3; ++i)
        EXPECT_NE(cache.Get(&keys[1]), nullptr);
    cache.Add(content, &keys[2], kLargest);
    cache.Add(content, &keys[3], kLargest);
    EXPECT_EQ(cache.Get(&keys[0]), nullptr);
    EXPECT_EQ(cache.Get(&keys[1]), nullptr);
    EXPECT_NE(cache.Get(&keys[2]), nullptr);
    EXPECT_NE(cache.Get(&keys[3]), nullptr);
    EXPECT_EQ(cache.usedBytes, 2 * kLargest);
}

TEST(MMCacheContext, PrefixesAreWholeWords)
{
    Cache cache(50, 50);
    const Key key = {1, 2, 3, 4, 5, 6};
    for (uint32_t depth : {0u, 1u, 12u, 47u, 48u, 0xFFFFFFF8u})
        EXPECT_EQ(cache.PreFetch(key.data(), depth, 1), 0u) << depth;
    EXPECT_EQ(cache.nodeCount, 0u);
    EXPECT_EQ(cache.PreFetch(key.data(), 16, 1), 1u);
    EXPECT_EQ(cache.nodeCount, 16u);
    EXPECT_EQ(cache.PreFetch(key.data(), 24, 0), 0u);
    EXPECT_EQ(cache.prefetchDepth, 16u); // a failure leaves the cursor
    void* payload = cache.Add("x", key.data(), 1);
    EXPECT_EQ(cache.Get(key.data()), payload);

    // The cursor goes back to the root when its node does.
    cache.RemoveLeaf(cache.mruHead);
    EXPECT_EQ(cache.prefetchNode, cache.root);
    EXPECT_EQ(cache.prefetchDepth, 0u);
}

// Of two entries that do not fit together only one is in memory at a time, unless the new one is a
// copy of the old.
TEST(MMCacheContext, EvictsBeforeItAsksTheHeap)
{
    const Key first = {1}, second = {2};
    std::string large(50000, 'x'); // far more than the nodes of the index
    for (bool copies : {false, true}) {
        FailingHeap heap;
        Cache cache(60000, 50000);
        void* old = cache.Add(large.data(), first.data(), 50000);
        heap.forgetPeak();
        const void* added = cache.Add(copies ? old : large.data(), second.data(), 50000);
        EXPECT_EQ(contentOf(added, 50000), large);
        EXPECT_EQ(heap.peakBytes() > 2 * 50000, copies);
    }
}

TEST(MMCacheContext, SurvivesARefusingHeap)
{
    failEachAllocation([] {
        Cache cache(100, 60);
        const Key key = {1, 2};
        cache.PreFetch(key.data(), 8, 1);
        const void* added = cache.Add("x", key.data(), 1);
        EXPECT_EQ(cache.Get(key.data()), added);
    });
}

} // namespace
