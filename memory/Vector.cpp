// SPDX-License-Identifier: MIT
// A small growable array of equal-sized elements for the library's clients.
#include "memory/Vector.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr uint32_t kMostElements = 255;
constexpr size_t kMostElementBytes = 255;

// Index of the element at position. Elements of no size all have index 0.
int64_t indexOf(const Vector& vector, const void* position)
{
    if (vector.elementSize == 0) return 0;
    const intptr_t distance = static_cast<intptr_t>(reinterpret_cast<uintptr_t>(position) -
                                                    reinterpret_cast<uintptr_t>(vector.items));
    return distance / vector.elementSize;
}

uint8_t* elementAt(const Vector& vector, uint32_t index)
{
    return vector.items + size_t{index} * vector.elementSize;
}

// Makes room for the given number of elements; false when the heap refuses.
bool reserve(Vector& vector, uint32_t elements)
{
    const size_t bytes = size_t{elements} * vector.elementSize;
    void* grown = std::realloc(vector.items, bytes != 0 ? bytes : 1);
    if (grown == nullptr) return false;
    vector.items = static_cast<uint8_t*>(grown);
    vector.capacity = static_cast<uint8_t>(elements);
    return true;
}

} // namespace

uint32_t Vector::initialize(uint8_t bytesPerElement, uint8_t growthStep, uint8_t initialCapacity)
{
    items = nullptr;
    elementSize = bytesPerElement;
    growBy = growthStep;
    count = 0;
    capacity = 0;
    if (initialCapacity == 0) return 0;
    return reserve(*this, initialCapacity) ? 0 : kFailed;
}

void Vector::deinitialize()
{
    std::free(items);
    items = nullptr;
    count = 0;
    capacity = 0;
}

uint32_t Vector::push(const void* element)
{
    // Growing may move the storage from under an element of this vector.
    uint8_t copy[kMostElementBytes];
    std::memcpy(copy, element, elementSize);
    if (count >= capacity) {
        const uint32_t grown = uint32_t{count} + growBy;
        if (growBy == 0 || grown > kMostElements || !reserve(*this, grown)) return kFailed;
    }
    std::memcpy(elementAt(*this, count), copy, elementSize);
    ++count;
    return 0;
}

uint32_t Vector::pop(void* destination)
{
    if (count == 0) return kEmpty;
    --count;
    if (destination != nullptr) std::memcpy(destination, elementAt(*this, count), elementSize);
    return 0;
}

uint32_t Vector::insertBefore(const void* element, void* position)
{
    const int64_t index = indexOf(*this, position);
    uint8_t copy[kMostElementBytes];
    std::memcpy(copy, element, elementSize);
    const uint32_t result = push(copy);
    if (result != 0) return result;
    uint8_t* place = items + index * elementSize;
    const size_t following = static_cast<size_t>(elementAt(*this, count - 1u) - place);
    std::memmove(place + elementSize, place, following);
    std::memcpy(place, copy, elementSize);
    return 0;
}

void Vector::remove(void* position)
{
    const int64_t index = indexOf(*this, position);
    const bool wasEmpty = count == 0;
    --count;
    if (wasEmpty) return;
    uint8_t* place = items + index * elementSize;
    const size_t following = static_cast<size_t>(elementAt(*this, count) - place);
    std::memmove(place, place + elementSize, following);
}
