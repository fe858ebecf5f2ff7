// SPDX-License-Identifier: MIT
// Scratch memory held by a scope, so that the order of release follows from the language.
#pragma once

#include "memory/MMStackContext.h"

#include <cstdint>
#include <type_traits>

// Words of an MMStackContext that hold count items of type T. A pointer counts as one word on every
// host, and so does every 32 bits of other data: what an operation takes from the stack does not
// depend on the pointer size. Answers a size that no stack can serve when the product does not fit.
template <class T>
constexpr uint32_t scratchWordsFor(uint32_t count)
{
    constexpr bool kHoldsWidePointers = sizeof(void*) == 8 && alignof(T) == 8;
    constexpr uint64_t kWordBytes = kHoldsWidePointers ? 8 : 4;
    constexpr uint64_t kTooMany = 0xFFFFFFFFu;
    const uint64_t words = (static_cast<uint64_t>(count) * sizeof(T) + kWordBytes - 1) / kWordBytes;
    return static_cast<uint32_t>(words < kTooMany ? words : kTooMany);
}

// An array of count items in scratch memory, given back when the scope ends. Not initialised.
// Converts to false when the stack could not serve it.
template <class T>
class ScratchArray {
public:
    static_assert(std::is_trivially_copyable<T>::value,
                  "scratch memory is neither built nor torn down");

    ScratchArray(MMStackContext& stack, uint32_t count)
        : stack_(stack), items_(static_cast<T*>(stack.Alloc(scratchWordsFor<T>(count))))
    {
    }
    ~ScratchArray() { stack_.DeAlloc(items_); }
    ScratchArray(const ScratchArray&) = delete;
    ScratchArray& operator=(const ScratchArray&) = delete;

    explicit operator bool() const { return items_ != nullptr; }
    T* data() { return items_; }
    T& operator[](uint32_t i) { return items_[i]; }
    const T& operator[](uint32_t i) const { return items_[i]; }

    // Keeps the first count items; only while this is the most recent allocation.
    bool resize(uint32_t count)
    {
        items_ = static_cast<T*>(stack_.ReAlloc(items_, scratchWordsFor<T>(count)));
        return items_ != nullptr;
    }

private:
    MMStackContext& stack_;
    T* items_;
};
