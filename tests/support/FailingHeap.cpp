// SPDX-License-Identifier: MIT
#include "tests/support/FailingHeap.h"

#include <algorithm>
#include <cstddef>
#include <malloc.h>

bool FailingHeap::nextCallFails()
{
    if (!counting_) return false;
    ++calls_;
    return firstFailure_ != 0 && calls_ >= firstFailure_ && calls_ <= lastFailure_;
}

void* FailingHeap::counted(void* block, int32_t sign)
{
    if (!counting_ || block == nullptr) return block;
    liveBlocks_ += sign;
    liveBytes_ += sign * static_cast<int64_t>(malloc_usable_size(block));
    peakBytes_ = std::max(peakBytes_, liveBytes_);
    return block;
}

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
    return FailingHeap::nextCallFails() ? nullptr : FailingHeap::counted(__real_malloc(size), 1);
}

void* __wrap_calloc(size_t count, size_t size)
{
    if (FailingHeap::nextCallFails()) return nullptr;
    return FailingHeap::counted(__real_calloc(count, size), 1);
}

void* __wrap_realloc(void* block, size_t size)
{
    if (FailingHeap::nextCallFails()) return nullptr;
    void* resized = __real_realloc(FailingHeap::counted(block, -1), size);
    FailingHeap::counted(resized != nullptr ? resized : block, 1);
    return resized;
}

void __wrap_free(void* block)
{
    __real_free(FailingHeap::counted(block, -1));
}

} // extern "C"
