// SPDX-License-Identifier: MIT
// A heap that fails on command, to test what happens when memory runs out.
//
// The test program is linked with --wrap for malloc, calloc, realloc and free, so every heap call
// that the library (compiled into the program) makes comes through here, with sanitizers too.
// Memory that the C++ runtime takes for the tests themselves is not seen.
#pragma once

#include <cstdint>

#include <gtest/gtest.h>

// Counts heap calls while it lives, and makes one or more of them fail. One at a time.
class FailingHeap {
public:
    FailingHeap()
    {
        failAt(0);
        liveBlocks_ = 0;
        liveBytes_ = 0;
        peakBytes_ = 0;
        counting_ = true;
    }
    ~FailingHeap() { counting_ = false; } // the heap works as usual again
    FailingHeap(const FailingHeap&) = delete;
    FailingHeap& operator=(const FailingHeap&) = delete;

    // Starts to count calls anew; the n-th from now on returns null, all others work. 0: none
    // fails.
    void failAt(uint32_t n)
    {
        calls_ = 0;
        firstFailure_ = lastFailure_ = n;
    }

    // As failAt, but all calls after the n-th fail as well.
    void failFrom(uint32_t n)
    {
        failAt(n);
        lastFailure_ = UINT32_MAX;
    }

    // Calls of malloc, calloc and realloc since the last failAt or failFrom, failed ones included.
    uint32_t calls() const { return calls_; }

    // Blocks taken less blocks given back since construction; 0 when nothing leaked.
    int32_t liveBlocks() const { return liveBlocks_; }
    int64_t liveBytes() const { return liveBytes_; }

    // The most bytes that were live at a time, since construction or the last forgetPeak.
    int64_t peakBytes() const { return peakBytes_; }
    void forgetPeak() { peakBytes_ = liveBytes_; }

    // For the functions that stand in for the heap's: counts a call, and says whether it fails;
    // counts a block that is taken (1) or given back (-1) and passes it on.
    static bool nextCallFails();
    static void* counted(void* block, int32_t sign);

private:
    static inline bool counting_ = false;
    static inline uint32_t calls_, firstFailure_, lastFailure_;
    static inline int32_t liveBlocks_;
    static inline int64_t liveBytes_, peakBytes_;
};

// Runs operation again and again, with the first heap call failing, then the second, and so on,
// until it comes through without reaching the failing one. The operation must give back everything
// it took each time, whatever failed. Returns how many heap calls it makes when all succeed.
template <class Operation>
uint32_t failEachAllocation(Operation operation)
{
    for (uint32_t n = 1;; ++n) {
        FailingHeap heap;
        heap.failAt(n);
        operation();
        const uint32_t calls = heap.calls();
        heap.failAt(0);
        EXPECT_EQ(heap.liveBlocks(), 0) << "leaked when heap call " << n << " failed";
        if (calls < n) return calls;
    }
}
