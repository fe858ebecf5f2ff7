// SPDX-License-Identifier: MIT
// The heap of the whole process, the engines' libraries included, counted and limited. The program
// defines malloc and its kin, which comes before the C library's; sanitizers do so themselves, and
// other C libraries offer no way around, so there a limited heap is not available.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
#define MM2D_LIMITED_HEAP 1
#else
#define MM2D_LIMITED_HEAP 0
#endif

// Counts while it lives. One at a time, on one thread.
class LimitedHeap {
public:
    static constexpr bool kAvailable = MM2D_LIMITED_HEAP != 0;

    // From now on: requests for more than the largest are refused, and all after the most.
    explicit LimitedHeap(size_t largest = SIZE_MAX, uint32_t most = UINT32_MAX)
    {
        calls_ = 0;
        greatest_ = 0;
        largest_ = largest;
        most_ = most;
        counting_ = true;
    }
    ~LimitedHeap() { counting_ = false; }
    LimitedHeap(const LimitedHeap&) = delete;
    LimitedHeap& operator=(const LimitedHeap&) = delete;

    uint32_t calls() const { return calls_; }
    size_t greatestRequest() const { return greatest_; }

    // For the functions that stand in for the heap's.
    static bool refuses(size_t bytes)
    {
        if (!counting_) return false;
        ++calls_;
        if (bytes > greatest_) greatest_ = bytes;
        return bytes > largest_ || calls_ > most_;
    }

private:
    static inline bool counting_ = false;
    static inline uint32_t calls_, most_;
    static inline size_t greatest_, largest_;
};
