#include "memory/MMCacheContext.h"

#include "tests/support/FailingHeap.h"

#include <algorithm>
#include <array>
#include <list>
#include <random>
#include <set>
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

// The digits of a key as text, one letter each.
std::string digitsOf(const Key& key)
{
    std::string digits;
    for (uint32_t word : key)
        for (int i = 0; i < 8; ++i, word >>= 4)
            digits += static_cast<char>('a' + (word & 15));
    return digits;
}

// What the cache should hold: keys and payloads, most recently used first.
struct Model {
    using Entry = std::pair<Key, std::string>;
    std::list<Entry> entries;
    size_t budget;

    std::list<Entry>::iterator find(const Key& key)
    {
        return std::find_if(entries.begin(), entries.end(),
                            [&](const Entry& entry) { return entry.first == key; });
    }
    const std::string* get(const Key& key)
    {
        const auto found = find(key);
        if (found == entries.end()) return nullptr;
        entries.splice(entries.begin(), entries, found);
        return &found->second;
    }
    const std::string* add(const Key& key, const std::string& payload)
    {
        if (payload.size() > kLargest) return nullptr;
        const auto found = find(key);
        if (found != entries.end()) return &found->second;
        if (payload.size() > budget) return nullptr;
        while (used() + payload.size() > budget)
            entries.pop_back();
        entries.emplace_front(key, payload);
        return &entries.front().second;
    }
    size_t used() const
    {
        size_t sum = 0;
        for (const Entry& entry : entries)
            sum += entry.second.size();
        return sum;
    }
    // Interior nodes and entries: as many as the keys have different beginnings.
    size_t nodes() const
    {
        std::set<std::string> prefixes;
        for (const Entry& entry : entries)
            for (size_t length = 1; length <= 48; ++length)
                prefixes.insert(digitsOf(entry.first).substr(0, length));
        return prefixes.size();
    }
};

// Few different digits, so that keys share long and short prefixes.
Key someKey(std::mt19937& random, uint32_t firstWord)
{
    Key key = {firstWord, 0, 0, 0, 0, 0};
    key[1] = random() % 2 << 28;
    key[3] = random() % 2 << 16;
    key[5] = random() % 4 << 28 | random() % 2;
    return key;
}

std::string contentOf(const void* payload, size_t size)
{
    return std::string(static_cast<const char*>(payload), size);
}

// Budgets from one that no payload fits to one for several: all of a path is evicted while a
// neighbour is added under it, and what is too large must evict nothing.
TEST(MMCacheContext, FollowsAListOfKeys)
{
    for (uint32_t seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        FailingHeap heap;
        {
            Model model;
            model.budget = seed * 5;
            Cache cache(seed * 5, kLargest);
            for (int step = 0; step < 300; ++step) {
                const Key key = someKey(random, random() % 3 * 0x10000000u);
                // Every operation starts from the root or from a prefix it resolves itself.
                const uint32_t depth = random() % 6 * 8;
                cache.prefetchNode = cache.root;
                cache.prefetchDepth = 0;
                const bool resolved = depth != 0 && cache.PreFetch(key.data(), depth, 0) == 1;
                ASSERT_EQ(cache.prefetchDepth, resolved ? depth : 0u);
                const std::string payload(random() % 45, static_cast<char>(random()));
                const bool adds = random() % 2 != 0;
                const std::string* expected = adds ? model.add(key, payload) : model.get(key);
                const void* found = adds ? cache.Add(payload.data(), key.data(),
                                                     static_cast<uint32_t>(payload.size()))
                                         : cache.Get(key.data());
                ASSERT_EQ(found != nullptr, expected != nullptr);
                if (found != nullptr) {
                    ASSERT_EQ(contentOf(found, expected->size()), *expected);
                }
                ASSERT_EQ(cache.usedBytes, model.used());
                // A refused payload leaves its path; eviction and adding do not.
                if (model.budget >= kLargest && step % 20 == 0) {
                    ASSERT_EQ(cache.nodeCount, model.nodes());
                }
            }
            // The order, from both ends.
            const MMCacheEntry* entry = cache.mruHead;
            const MMCacheEntry* previous = nullptr;
            for (const auto& expected : model.entries) {
                ASSERT_NE(entry, nullptr);
                ASSERT_EQ(entry->prev, previous);
                ASSERT_EQ(contentOf(entry->data, entry->size), expected.second);
                previous = entry;
                entry = entry->next;
            }
            EXPECT_EQ(entry, nullptr);
            EXPECT_EQ(cache.lruTail, previous);
        }
        EXPECT_EQ(heap.liveBlocks(), 0);
    }
}

TEST(MMCacheContext, CopiesAPayloadOutOfAnEntryThatGoes)
{
    Cache cache(64, 64);
    const Key from = {1, 0, 0, 0, 0, 0};
    const Key to = {2, 0, 0, 0, 0, 0};
    const std::string payload(60, 'p');
    const void* source = cache.Add(payload.data(), from.data(), 60);
    const void* copy = cache.Add(source, to.data(), 60);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(contentOf(copy, 60), payload);
    EXPECT_EQ(cache.Get(from.data()), nullptr);
}

TEST(MMCacheContext, PrefixesAreWholeWords)
{
    Cache cache(50, 50);
    const Key key = {1, 2, 3, 4, 5, 6};
    for (uint32_t depth : {0u, 1u, 7u, 12u, 47u, 48u, 56u, 0xFFFFFFF8u})
        EXPECT_EQ(cache.PreFetch(key.data(), depth, 1), 0u) << depth;
    EXPECT_EQ(cache.PreFetch(key.data(), 8, 0), 0u);
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
    EXPECT_EQ(cache.nodeCount, 0u);
}

TEST(MMCacheContext, SurvivesARefusingHeap)
{
    failEachAllocation([] {
        Cache cache(100, 60);
        for (uint32_t i = 0; i < 3; ++i) {
            const Key key = {i, i, 0, 0, 0, i};
            const std::string payload(60, 'p');
            cache.PreFetch(key.data(), 8, 1);
            const void* added = cache.Add(payload.data(), key.data(), 60);
            if (cache.prefetchNode != nullptr) {
                EXPECT_EQ(cache.Get(key.data()), added);
            }
        }
    });
}

} // namespace
