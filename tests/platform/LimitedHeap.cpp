// SPDX-License-Identifier: MIT
#include "tests/platform/LimitedHeap.h"

#if MM2D_LIMITED_HEAP

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);

void* malloc(size_t size)
{
    return LimitedHeap::refuses(size) ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size)
{
    return LimitedHeap::refuses(count * size) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, size_t size)
{
    return LimitedHeap::refuses(size) ? nullptr : __libc_realloc(block, size);
}

} // extern "C"

#endif
