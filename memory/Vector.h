// SPDX-License-Identifier: MIT
// A small growable array of equal-sized elements for the library's clients.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)

// At most 255 elements of at most 255 bytes, copied in and out by value. A plain record: initialize
// before use, deinitialize after. Positions are addresses of elements within items.
class Vector {
public:
    static constexpr uint32_t kFailed = 1;   // out of memory or beyond 255 elements
    static constexpr uint32_t kEmpty = 4096; // pop found nothing

    uint8_t* items;      // owned; null while there is no storage
    uint8_t elementSize; // bytes
    uint8_t growBy;      // elements added to the capacity when it is used up
    uint8_t count;
    uint8_t capacity;

    // Returns 0, or kFailed when the initial storage could not be had.
    uint32_t initialize(uint8_t bytesPerElement, uint8_t growthStep, uint8_t initialCapacity);

    void deinitialize();

    // Appends a copy of the element, which may lie inside this vector. Returns 0 or kFailed
    // (nothing changed); a full vector with growBy 0 fails.
    uint32_t push(const void* element);

    // Takes the last element away and copies it to destination unless that is null. Returns 0 or
    // kEmpty.
    uint32_t pop(void* destination);

    // Puts a copy of the element before the one at position. Returns 0 or kFailed.
    uint32_t insertBefore(const void* element, void* position);

    // Takes the element at position away. On an empty vector the count wraps to 255 and nothing is
    // moved: callers check first.
    void remove(void* position);
};

#pragma GCC visibility pop
