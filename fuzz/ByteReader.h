// SPDX-License-Identifier: MIT
// The bytes of a fuzzer's input as numbers. Beyond the end everything is 0.
#pragma once

#include "math/Fixed.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

class ByteReader {
public:
    ByteReader(const uint8_t* data, size_t size) : at_(data), left_(size) {}

    size_t left() const { return left_; }

    uint8_t byte() { return take<uint8_t>(); }
    uint16_t half() { return take<uint16_t>(); }
    uint32_t word() { return take<uint32_t>(); }
    uint32_t below(uint32_t limit) { return byte() % limit; } // limit up to 256

    // A coordinate or length: near the target, anywhere, or at an end of the range.
    KAVO::Fixed fixed()
    {
        constexpr KAVO::Fixed kEnds[] = {INT32_MIN, INT32_MIN + 1, INT32_MAX, 0x7FFF8000, 0, 1,
                                         -1,        0x8000};
        switch (below(4)) {
        case 0:
            return static_cast<int8_t>(byte()) * KAVO::kFixedOne;
        case 1:
            return static_cast<int16_t>(half()) * 0x100;
        case 2:
            return static_cast<KAVO::Fixed>(word());
        default:
            return kEnds[below(8)];
        }
    }

    // An array of exactly count items, so that a read behind its end is seen.
    template <class T>
    std::vector<T> array(size_t count)
    {
        std::vector<T> items(count);
        const size_t bytes = std::min(left_, count * sizeof(T));
        if (bytes > 0) std::memcpy(items.data(), at_, bytes);
        skip(bytes);
        return items;
    }

private:
    template <class T>
    T take()
    {
        T value = 0;
        const size_t bytes = std::min(left_, sizeof value);
        if (bytes > 0) std::memcpy(&value, at_, bytes);
        skip(bytes);
        return value;
    }
    void skip(size_t bytes)
    {
        at_ += bytes;
        left_ -= bytes;
    }

    const uint8_t* at_;
    size_t left_;
};
