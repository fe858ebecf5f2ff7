// SPDX-License-Identifier: MIT
// Base64, for image data inside documents.
#include "util/Base64.h"

namespace {

// The accumulator gathers four digits of six bits behind a mark of six one bits, which moves up
// with them and so counts them:
//   start    00000000 00000000 00001111 11000000
//   full     00111111 AAAAAABB BBBBCCCC CCDDDDDD
constexpr uint32_t kGroupDone = 0xFC000000; // not 0 under this mask: four digits
constexpr uint32_t kFirstGroup = 0xFC0;
constexpr uint32_t kNextGroup = 0x3F; // becomes kFirstGroup with the shift that follows

// The value of a digit: 0 to 63 for the alphabet, anything for other bytes.
uint32_t valueOf(uint8_t c)
{
    uint32_t v = c;
    if ((c & 0xE0) == 0x40) v += 6;  // capitals
    if ((c & 0xF0) == 0x30) v += 75; // numerals
    if (c == '+') v += 90;
    if (c == '/') v += 87;
    return (v - 71) & 0xFF; // small letters: 'a' is 97 and counts 26
}

bool isDigit(uint8_t c)
{
    return (valueOf(c) & 0xC0) == 0 && c != ':' && c != '@' && c != '`';
}

// Writes the first count of the group's three bytes.
uint8_t* writeGroup(uint8_t* out, uint32_t group, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i)
        *out++ = static_cast<uint8_t>(group >> (16 - 8 * i));
    return out;
}

} // namespace

int32_t MMdecodeBase64(const uint8_t* src, uint32_t length, uint8_t* dst)
{
    if (dst == nullptr || (src == nullptr && length != 0)) return 0;
    uint8_t* out = dst;
    uint32_t group = kFirstGroup;
    uint32_t lastShift = 0;
    for (uint32_t i = 0; i < length; ++i) {
        const bool valid = isDigit(src[i]);
        group = (group & ~0x3Fu) | (valueOf(src[i]) & 0x3F);
        if (valid && (group & kGroupDone) != 0) {
            out = writeGroup(out, group, 3);
            group = kNextGroup;
        }
        lastShift = valid ? 6 : 0;
        group <<= lastShift;
    }
    group >>= lastShift;

    uint32_t missing = 0; // digits that the last group lacks
    for (; missing < 4 && (group & kGroupDone) == 0; ++missing)
        group <<= 6;
    constexpr uint32_t kBytesToWrite[] = {3, 3, 2, 1, 0};
    out = writeGroup(out, group, kBytesToWrite[missing]);
    return static_cast<int32_t>(out - dst);
}
