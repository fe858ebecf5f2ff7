// SPDX-License-Identifier: MIT
// A cache of small blobs under keys of fixed length, kept within a byte budget.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)

// What interior nodes and entries have in common.
struct MMCacheBaseNode {
    MMCacheBaseNode* parent; // null for the root only
    uint16_t slot;           // 0 to 15: which child of the parent this is
    uint16_t refCount;       // interior node: occupied children; entry: 1
};

struct MMCacheInteriorNode : MMCacheBaseNode {
    MMCacheBaseNode* children[16];
};

// An entry and its payload are one heap block.
struct MMCacheEntry : MMCacheBaseNode {
    uint8_t* data;      // the payload, just behind this header
    MMCacheEntry* prev; // used more recently
    MMCacheEntry* next; // used less recently
    uint32_t size;      // of the payload, bytes
};

// The index is a tree that takes one 4-bit digit of the key per level, so every entry lies N levels
// below the root and keys with a common beginning share its nodes: no hashing, no comparison of
// keys. A list orders the entries by their last use; the one unused for longest goes first.
//
// The budget counts payloads. What holds them comes on top: a header for each, and up to N - 1
// nodes of the tree.
//
// Keys are N / 8 words of 32 bits. Digits are taken from the low end of each word upward, words in
// order. Payloads stay where they are until they are evicted. One user at a time: PreFetch leaves a
// cursor behind that Get and Add start from.
template <uint32_t N>
class MMCacheContext {
public:
    static_assert(N % 8 == 0 && N >= 16, "keys are whole words, the last one never prefetched");

    // Starts empty. Without memory for the root the cache stays empty and every call fails.
    void Create(uint32_t byteBudget, uint32_t largestEntry);

    // Frees everything.
    void Destroy();

    // Resolves the first depth digits of the key, 8 to N - 8 and whole words only, once for all the
    // Get and Add calls that follow; their keys must begin alike. With create 0 a prefix that is
    // not there fails, otherwise its nodes are made. Returns 1, or 0 and leaves the cursor.
    uint32_t PreFetch(const void* key, uint32_t depth, uint8_t create);

    // The payload under the key, which becomes the most recently used, or null.
    void* Get(const void* key);

    // Makes an entry the most recently used, as Get does.
    void Use(MMCacheEntry* entry);

    // Stores a copy of size bytes (null data: not initialised) and returns where it is. A key that
    // is there already keeps its payload and place in the order, and that payload is returned. Null
    // when size exceeds maxEntrySize or the budget, or the heap is exhausted. What has to go for it
    // goes first; data may lie in such an entry.
    void* Add(const void* data, const void* key, uint32_t size);

    // Takes an entry out and frees it, with all nodes that only it held.
    void RemoveLeaf(MMCacheBaseNode* entry);

    // Takes one reference off a node. Without any left, it is freed and its parent loses one too.
    void RemoveNode(MMCacheBaseNode* node);

    uint32_t usedBytes;                // of all payloads
    uint32_t budget;                   // usedBytes stays within it
    uint32_t maxEntrySize;             // bytes
    uint32_t prefetchDepth;            // digits that the cursor has resolved
    MMCacheEntry* mruHead;             // most recently used
    MMCacheEntry* lruTail;             // to be evicted next
    MMCacheInteriorNode* root;         // owned
    MMCacheInteriorNode* prefetchNode; // the cursor
    uint32_t nodeCount;                // interior nodes and entries below the root
};

extern template class MMCacheContext<48>;

#pragma GCC visibility pop
