// SPDX-License-Identifier: MIT
// A cache of small blobs under keys of fixed length.
#include "memory/MMCacheContext.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr uint32_t kDigitsPerWord = 8;

// The word of the key whose digits begin with number index. Keys need no alignment.
uint32_t wordAt(const void* key, uint32_t index)
{
    uint32_t word;
    std::memcpy(&word, static_cast<const uint8_t*>(key) + index / kDigitsPerWord * sizeof word,
                sizeof word);
    return word;
}

// The last digit of a key of N.
template <uint32_t N>
uint32_t lastDigit(const void* key)
{
    return wordAt(key, N - kDigitsPerWord) >> 28;
}

MMCacheInteriorNode* makeInteriorNode()
{
    return static_cast<MMCacheInteriorNode*>(std::calloc(1, sizeof(MMCacheInteriorNode)));
}

// Frees a tree that has no entries left, always the first path to its end and then upward.
void freeInteriorNodes(MMCacheInteriorNode* node)
{
    while (node != nullptr) {
        MMCacheBaseNode** child = node->children;
        MMCacheBaseNode** const end = child + 16;
        while (child != end && *child == nullptr)
            ++child;
        MMCacheBaseNode* next = node->parent;
        if (child != end) {
            next = *child;
            *child = nullptr;
        } else {
            std::free(node);
        }
        node = static_cast<MMCacheInteriorNode*>(next);
    }
}

template <uint32_t N>
MMCacheInteriorNode* makeChild(MMCacheContext<N>& cache, MMCacheInteriorNode* parent, uint32_t slot)
{
    MMCacheInteriorNode* child = makeInteriorNode();
    if (child == nullptr) return nullptr;
    child->parent = parent;
    child->slot = static_cast<uint16_t>(slot);
    parent->children[slot] = child;
    ++parent->refCount;
    ++cache.nodeCount;
    return child;
}

// The interior node that the key's digits [from, to) lead to from node, from being the first of a
// word; null when it is missing and is not to be made or cannot be. What has been made so far
// stays.
template <uint32_t N>
MMCacheInteriorNode* resolve(MMCacheContext<N>& cache, MMCacheInteriorNode* node, const void* key,
                             uint32_t from, uint32_t to, bool create)
{
    uint32_t word = 0;
    for (uint32_t i = from; i < to && node != nullptr; ++i) {
        if (i % kDigitsPerWord == 0) word = wordAt(key, i);
        const uint32_t slot = word & 15;
        word >>= 4;
        MMCacheBaseNode* child = node->children[slot];
        if (child == nullptr && create) child = makeChild(cache, node, slot);
        node = static_cast<MMCacheInteriorNode*>(child);
    }
    return node;
}

template <uint32_t N>
void unlink(MMCacheContext<N>& cache, MMCacheEntry* entry)
{
    (entry->prev != nullptr ? entry->prev->next : cache.mruHead) = entry->next;
    (entry->next != nullptr ? entry->next->prev : cache.lruTail) = entry->prev;
}

template <uint32_t N>
void putFirst(MMCacheContext<N>& cache, MMCacheEntry* entry)
{
    entry->prev = nullptr;
    entry->next = cache.mruHead;
    (cache.mruHead != nullptr ? cache.mruHead->prev : cache.lruTail) = entry;
    cache.mruHead = entry;
}

// An entry of its own with a copy of the data, in no tree and no list yet; null without memory.
MMCacheEntry* makeEntry(const void* data, uint32_t size)
{
    const size_t bytes = sizeof(MMCacheEntry) + size;
    if (bytes < size) return nullptr; // wrapped, on hosts with 32-bit sizes
    MMCacheEntry* entry = static_cast<MMCacheEntry*>(std::malloc(bytes));
    if (entry == nullptr) return nullptr;
    entry->refCount = 1;
    entry->data = reinterpret_cast<uint8_t*>(entry + 1);
    entry->size = size;
    if (data != nullptr && size != 0) std::memcpy(entry->data, data, size);
    return entry;
}

// Evicts what was not used for longest, until size more bytes keep within the budget.
template <uint32_t N>
void makeRoom(MMCacheContext<N>& cache, uint32_t size)
{
    while (cache.usedBytes > cache.budget - size && cache.lruTail != nullptr)
        // The analyser does not see that an entry's removal moves the tail.
        cache.RemoveLeaf(cache.lruTail); // NOLINT(clang-analyzer-unix.Malloc)
}

// Whether the data is part of an entry that makeRoom will evict.
template <uint32_t N>
bool liesInWhatGoes(const MMCacheContext<N>& cache, const void* data, uint32_t size)
{
    const uintptr_t address = reinterpret_cast<uintptr_t>(data);
    uint32_t used = cache.usedBytes;
    for (const MMCacheEntry* entry = cache.lruTail; entry != nullptr && used > cache.budget - size;
         entry = entry->prev) {
        const uintptr_t start = reinterpret_cast<uintptr_t>(entry->data);
        if (address >= start && address - start < entry->size) return true;
        used -= entry->size;
    }
    return false;
}

} // namespace

template <uint32_t N>
void MMCacheContext<N>::Create(uint32_t byteBudget, uint32_t largestEntry)
{
    usedBytes = 0;
    budget = byteBudget;
    maxEntrySize = largestEntry;
    prefetchDepth = 0;
    mruHead = nullptr;
    lruTail = nullptr;
    root = makeInteriorNode();
    prefetchNode = root;
    nodeCount = 0;
}

template <uint32_t N>
void MMCacheContext<N>::Destroy()
{
    while (lruTail != nullptr)
        RemoveLeaf(lruTail);
    freeInteriorNodes(root);
    root = nullptr;
    prefetchNode = nullptr;
    prefetchDepth = 0;
    nodeCount = 0;
}

template <uint32_t N>
uint32_t MMCacheContext<N>::PreFetch(const void* key, uint32_t depth, uint8_t create)
{
    // A cursor between words, or at an entry, would send Get astray.
    if (depth < kDigitsPerWord || depth > N - kDigitsPerWord || depth % kDigitsPerWord != 0)
        return 0;
    MMCacheInteriorNode* node = resolve(*this, root, key, 0, depth, create != 0);
    if (node == nullptr) return 0;
    prefetchNode = node;
    prefetchDepth = depth;
    return 1;
}

template <uint32_t N>
void* MMCacheContext<N>::Get(const void* key)
{
    const MMCacheInteriorNode* last =
        resolve(*this, prefetchNode, key, prefetchDepth, N - 1, false);
    if (last == nullptr) return nullptr;
    MMCacheEntry* entry = static_cast<MMCacheEntry*>(last->children[lastDigit<N>(key)]);
    if (entry == nullptr) return nullptr;
    Use(entry);
    return entry->data;
}

template <uint32_t N>
void MMCacheContext<N>::Use(MMCacheEntry* entry)
{
    if (entry == mruHead) return;
    unlink(*this, entry);
    putFirst(*this, entry);
}

template <uint32_t N>
void* MMCacheContext<N>::Add(const void* data, const void* key, uint32_t size)
{
    if (size > maxEntrySize) return nullptr;
    MMCacheInteriorNode* last = resolve(*this, prefetchNode, key, prefetchDepth, N - 1, true);
    if (last == nullptr) return nullptr;
    const uint32_t slot = lastDigit<N>(key);
    if (last->children[slot] != nullptr)
        return static_cast<MMCacheEntry*>(last->children[slot])->data;
    if (size > budget) return nullptr;

    ++last->refCount; // from here on the place is taken: no node above it is freed
    const bool copiedAhead = liesInWhatGoes(*this, data, size);
    MMCacheEntry* entry = copiedAhead ? makeEntry(data, size) : nullptr;
    makeRoom(*this, size);
    if (!copiedAhead) entry = makeEntry(data, size);
    if (entry == nullptr) {
        --last->refCount;
        return nullptr;
    }
    entry->parent = last;
    entry->slot = static_cast<uint16_t>(slot);
    last->children[slot] = entry;
    putFirst(*this, entry);
    usedBytes += size;
    ++nodeCount;
    return entry->data;
}

template <uint32_t N>
void MMCacheContext<N>::RemoveLeaf(MMCacheBaseNode* entry)
{
    MMCacheEntry* leaf = static_cast<MMCacheEntry*>(entry);
    unlink(*this, leaf);
    usedBytes -= leaf->size;
    RemoveNode(leaf);
}

template <uint32_t N>
void MMCacheContext<N>::RemoveNode(MMCacheBaseNode* node)
{
    while (--node->refCount == 0 && node->parent != nullptr) {
        MMCacheInteriorNode* parent = static_cast<MMCacheInteriorNode*>(node->parent);
        if (node == prefetchNode) {
            prefetchNode = root;
            prefetchDepth = 0;
        }
        parent->children[node->slot] = nullptr;
        std::free(node);
        --nodeCount;
        node = parent;
    }
}

template class MMCacheContext<48>;
