// SPDX-License-Identifier: MIT
// Strings of 16-bit code units, and their making from UTF-8.
#include "util/WideString.h"

#include <cstdlib>

int32_t MMwsstrlen(const uint16_t* s)
{
    if (s == nullptr) return 0;
    int32_t length = 0;
    while (s[length] != 0)
        ++length;
    return length;
}

int32_t MM_wstrcmp(const uint16_t* a, const uint16_t* b)
{
    if (a == nullptr || b == nullptr) return 0;
    for (; *a != 0; ++a, ++b)
        if (*a != *b) return *a - *b;
    return *b != 0 ? -1 : 0;
}

int32_t MM_wstrncmp(const uint16_t* a, const uint16_t* b, int32_t n)
{
    if (a == nullptr || b == nullptr) return 0;
    for (; n > 0; ++a, ++b, --n) {
        if (*a == 0) return *b != 0 ? -1 : 0;
        if (*a != *b) return *a - *b;
    }
    return 0;
}

uint16_t* MM_wstrncpy(uint16_t* dst, const uint16_t* src, int32_t n)
{
    if (dst == nullptr || src == nullptr) return nullptr;
    int32_t i = 0;
    for (; i < n && src[i] != 0; ++i)
        dst[i] = src[i];
    for (; i < n; ++i)
        dst[i] = 0;
    return dst;
}

uint16_t* MM_wstrchr(uint16_t* s, uint16_t c)
{
    if (s == nullptr) return nullptr;
    while (*s != 0 && *s != c)
        ++s;
    return s;
}

uint16_t* MMstrUtf8ToWs(const uint8_t* utf8, uint32_t length)
{
    // Every sequence gives one code unit, so there are never more of them than bytes.
    const uint64_t bytes = (uint64_t{length} + 1) * sizeof(uint16_t);
    if ((utf8 == nullptr && length != 0) || bytes > SIZE_MAX) return nullptr;
    uint16_t* text = static_cast<uint16_t*>(std::malloc(static_cast<size_t>(bytes)));
    if (text == nullptr) return nullptr;

    const auto byteAt = [utf8, length](uint64_t i) -> uint32_t { return i < length ? utf8[i] : 0; };
    uint16_t* out = text;
    uint64_t i = 0;
    while (i < length) {
        const uint32_t lead = byteAt(i);
        if (lead < 0x80) { // 0xxxxxxx
            *out++ = static_cast<uint16_t>(lead);
            i += 1;
        } else if (lead > 0xDF) { // 1110xxxx 10xxxxxx 10xxxxxx
            *out++ = static_cast<uint16_t>((lead & 0x0F) << 12 | (byteAt(i + 1) & 0x3F) << 6 |
                                           (byteAt(i + 2) & 0x3F));
            i += 3;
        } else { // 110xxxxx 10xxxxxx
            *out++ = static_cast<uint16_t>((lead & 0x1F) << 6 | (byteAt(i + 1) & 0x3F));
            i += 2;
        }
    }
    *out = 0;
    return text;
}
