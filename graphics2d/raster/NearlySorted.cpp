// SPDX-License-Identifier: MIT
// Sorting what turned out to be far from order.
#include "graphics2d/raster/NearlySorted.h"

#include <cstring>

namespace KAVO {
namespace Graphics2D {

namespace {

// Records of a few words each, as a heap: no record is less than those at 2i + 1 and 2i + 2.
class RecordHeap {
public:
    RecordHeap(void* records, uint32_t words)
        : bytes_(static_cast<uint8_t*>(records)), size_(words * sizeof(uint32_t))
    {
    }

    // Lets the record at index i sink to its place among the first count.
    void sink(uint32_t i, uint32_t count)
    {
        for (uint32_t child; (child = 2 * i + 1) < count; i = child) {
            if (child + 1 < count && key(child) < key(child + 1)) ++child;
            if (key(child) <= key(i)) return;
            swap(i, child);
        }
    }

    void swap(uint32_t a, uint32_t b)
    {
        uint8_t* first = record(a);
        uint8_t* second = record(b);
        for (uint8_t* const end = first + size_; first != end;) {
            uint32_t wordA, wordB;
            std::memcpy(&wordA, first, sizeof wordA);
            std::memcpy(&wordB, second, sizeof wordB);
            std::memcpy(first, &wordB, sizeof wordB);
            std::memcpy(second, &wordA, sizeof wordA);
            first += sizeof wordA;
            second += sizeof wordB;
        }
    }

private:
    uint8_t* record(uint32_t i) const { return bytes_ + size_t{i} * size_; }

    int64_t key(uint32_t i) const
    {
        int32_t words[2];
        std::memcpy(words, record(i), sizeof words);
        return words[0] * (int64_t{1} << 32) + words[1];
    }

    uint8_t* bytes_;
    uint32_t size_; // of a record, in bytes
};

} // namespace

[[gnu::cold]] void sortByHeap(void* records, uint32_t words, uint32_t count)
{
    RecordHeap heap(records, words);
    for (uint32_t i = count / 2; i-- > 0;)
        heap.sink(i, count);
    for (uint32_t left = count; left-- > 1;) {
        heap.swap(0, left);
        heap.sink(0, left);
    }
}

} // namespace Graphics2D
} // namespace KAVO
