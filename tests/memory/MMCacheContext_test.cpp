#include "memory/MMCacheContext.h"

#include "tests/support/FailingHeap.h"

#include <array>
#include <cstring>
#include <list>
#include <map>
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

// The digits of a key as text, one letter each.
std::string digitsOf(const Key& key)
{
    std::string digits;
    for (uint32_t word : key)
        for (int i = 0; i < 8; ++i, word >>= 4)
            digits += static_cast<char>('a' + (word & 15));
    return digits;
}

// What the cache should hold: payloads by key, keys by recency, paths as the prefixes of keys.
class Model {
public:
    Model(uint32_t budget, uint32_t largest) : budget_(budget), largest_(largest) {}

    const std::string* get(const Key& key)
    {
        const auto found = payloads_.find(key);
        if (found == payloads_.end()) return nullptr;
        order_.remove(key);
        order_.push_front(key);
        return &found->second;
    }
    const std::string* add(const Key& key, const std::string& payload)
    {
        if (payload.size() > largest_) return nullptr;
        const auto found = payloads_.find(key);
        if (found != payloads_.end()) return &found->second;
        while (used() + payload.size() > budget_) {
            payloads_.erase(order_.back());
            order_.pop_back();
        }
        order_.push_front(key);
        return &(payloads_[key] = payload);
    }
    size_t used() const
    {
        size_t sum = 0;
        for (const auto& entry : payloads_)
            sum += entry.second.size();
        return sum;
    }
    // Interior nodes and entries that hold the current keys.
    size_t nodesOfEntries() const
    {
        std::set<std::string> prefixes;
        for (const auto& entry : payloads_)
            for (size_t length = 1; length <= 48; ++length)
                prefixes.insert(digitsOf(entry.first).substr(0, length));
        return prefixes.size();
    }
    const std::list<Key>& order() const { return order_; }

private:
    size_t budget_;
    size_t largest_;
    std::map<Key, std::string> payloads_;
    std::list<Key> order_; // most recently used first
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

TEST(MMCacheContext, FollowsAMapWithAList)
{
    for (uint32_t seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        FailingHeap heap;
        {
            const uint32_t budget = 60 + random() % 200;
            Cache cache(budget, 40);
            Model model(budget, 40);
            for (int step = 0; step < 500; ++step) {
                const Key key = someKey(random, random() % 3 * 0x10000000u);
                // Every operation starts from the root or from a prefix it resolves itself.
                const uint32_t depth = random() % 6 * 8;
                cache.prefetchNode = cache.root;
                cache.prefetchDepth = 0;
                const bool resolved = depth != 0 && cache.PreFetch(key.data(), depth, 0) == 1;
                ASSERT_EQ(cache.prefetchDepth, resolved ? depth : 0u);
                if (random() % 2 == 0) {
                    const std::string* expected = model.get(key);
                    const void* found = cache.Get(key.data());
                    ASSERT_EQ(found != nullptr, expected != nullptr);
                    if (found != nullptr) {
                        ASSERT_EQ(contentOf(found, expected->size()), *expected);
                    }
                } else {
                    const std::string payload(random() % 45, static_cast<char>(random()));
                    const std::string* expected = model.add(key, payload);
                    const void* added = cache.Add(payload.data(), key.data(),
                                                  static_cast<uint32_t>(payload.size()));
                    ASSERT_EQ(added != nullptr, expected != nullptr);
                    if (added != nullptr) {
                        ASSERT_EQ(contentOf(added, expected->size()), *expected);
                    }
                }
                ASSERT_EQ(cache.usedBytes, model.used());
                if (step % 20 == 0) {
                    ASSERT_EQ(cache.nodeCount, model.nodesOfEntries());
                }
            }
            // The order, from both ends.
            const MMCacheEntry* entry = cache.mruHead;
            const MMCacheEntry* previous = nullptr;
            for (const Key& key : model.order()) {
                ASSERT_NE(entry, nullptr);
                ASSERT_EQ(entry->prev, previous);
                ASSERT_EQ(uint32_t{entry->slot}, key[5] >> 28);
                previous = entry;
                entry = entry->next;
            }
            EXPECT_EQ(entry, nullptr);
            EXPECT_EQ(cache.lruTail, previous);
        }
        EXPECT_EQ(heap.liveBlocks(), 0);
    }
}

TEST(MMCacheContext, EvictsTheLeastRecentlyUsedFirst)
{
    Cache cache(10240, 2048);
    const auto key = [](uint32_t i) { return Key{7, 0, 0, 0, 0, i}; };
    for (uint32_t i = 0; i < 5; ++i)
        ASSERT_NE(cache.Add(nullptr, key(i).data(), 2048), nullptr);
    EXPECT_EQ(cache.Add(nullptr, key(9).data(), 2049), nullptr);
    EXPECT_EQ(cache.usedBytes, 10240u);
    EXPECT_NE(cache.Get(key(0).data()), nullptr);
    EXPECT_NE(cache.Add(nullptr, key(5).data(), 2048), nullptr);
    EXPECT_EQ(cache.Get(key(1).data()), nullptr);
    for (uint32_t i : {0u, 2u, 3u, 4u, 5u})
        EXPECT_NE(cache.Get(key(i).data()), nullptr) << i;
    EXPECT_EQ(cache.usedBytes, 10240u);
}

// The only entry of a path makes room for its neighbour on the same path.
TEST(MMCacheContext, EvictionDoesNotCutThePathInUse)
{
    Cache cache(100, 100);
    const Key first = {1, 2, 3, 4, 5, 0x10000006};
    const Key second = {1, 2, 3, 4, 5, 0x20000006};
    ASSERT_EQ(cache.PreFetch(first.data(), 40, 1), 1u);
    for (const Key& key : {first, second, first}) {
        const std::string payload(90, static_cast<char>(key[5] >> 28));
        ASSERT_NE(cache.Add(payload.data(), key.data(), 90), nullptr);
        const void* found = cache.Get(key.data());
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(contentOf(found, 90), payload);
    }
    EXPECT_EQ(cache.nodeCount, 48u);
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

TEST(MMCacheContext, RefusesWhatCannotFitBeforeEvicting)
{
    Cache cache(50, 80);
    const Key key = {1, 2, 3, 4, 5, 6};
    const Key other = {1, 2, 3, 4, 5, 7};
    void* kept = cache.Add(nullptr, key.data(), 50);
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(cache.Add(nullptr, other.data(), 51), nullptr);
    EXPECT_EQ(cache.Add(nullptr, key.data(), 51), kept); // is there already
    EXPECT_EQ(cache.usedBytes, 50u);
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
