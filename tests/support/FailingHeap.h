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
    FailingHeap();
    ~FailingHeap(); // the heap works as usual again
    FailingHeap(const FailingHeap&) = delete;
    FailingHeap& operator=(const FailingHeap&) = delete;

    // Starts to count calls anew; the n-th from now on returns null, all others work. 0: none
    // fails.
    void failAt(uint32_t n);

    // As failAt, but all calls after the n-th fail as well.
    void failFrom(uint32_t n);

    // Calls of malloc, calloc and realloc since the last failAt or failFrom, failed ones included.
    uint32_t calls() const;

    // Blocks taken less blocks given back since construction; 0 when nothing leaked.
    int32_t liveBlocks() const;
    int64_t liveBytes() const;
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
