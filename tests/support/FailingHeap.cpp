#include "tests/support/FailingHeap.h"

#include <cstddef>
#include <malloc.h>

namespace {

bool counting = false;
uint32_t callCount = 0;
int32_t liveCount = 0;
int64_t liveSize = 0;      // bytes
uint32_t firstFailure = 0; // call number; 0: none
uint32_t lastFailure = 0;

// Counts one call; true when it is to fail.
bool nextCallFails()
{
    if (!counting) return false;
    ++callCount;
    return firstFailure != 0 && callCount >= firstFailure && callCount <= lastFailure;
}

void blockTaken(void* block)
{
    if (!counting || block == nullptr) return;
    ++liveCount;
    liveSize += static_cast<int64_t>(malloc_usable_size(block));
}

void blockGivenBack(void* block)
{
    if (!counting || block == nullptr) return;
    --liveCount;
    liveSize -= static_cast<int64_t>(malloc_usable_size(block));
}

} // namespace

extern "C" {

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);

void* __wrap_malloc(size_t size);
void* __wrap_calloc(size_t count, size_t size);
void* __wrap_realloc(void* block, size_t size);
void __wrap_free(void* block);

void* __wrap_malloc(size_t size)
{
    if (nextCallFails()) return nullptr;
    void* block = __real_malloc(size);
    blockTaken(block);
    return block;
}

void* __wrap_calloc(size_t count, size_t size)
{
    if (nextCallFails()) return nullptr;
    void* block = __real_calloc(count, size);
    blockTaken(block);
    return block;
}

void* __wrap_realloc(void* block, size_t size)
{
    if (nextCallFails()) return nullptr;
    blockGivenBack(block);
    void* resized = __real_realloc(block, size);
    blockTaken(resized != nullptr ? resized : block);
    return resized;
}

void __wrap_free(void* block)
{
    blockGivenBack(block);
    __real_free(block);
}

} // extern "C"

FailingHeap::FailingHeap()
{
    liveCount = 0;
    liveSize = 0;
    failAt(0);
    counting = true;
}

FailingHeap::~FailingHeap()
{
    counting = false;
}

void FailingHeap::failAt(uint32_t n)
{
    callCount = 0;
    firstFailure = n;
    lastFailure = n;
}

void FailingHeap::failFrom(uint32_t n)
{
    failAt(n);
    lastFailure = UINT32_MAX;
}

uint32_t FailingHeap::calls() const
{
    return callCount;
}

int32_t FailingHeap::liveBlocks() const
{
    return liveCount;
}

int64_t FailingHeap::liveBytes() const
{
    return liveSize;
}
