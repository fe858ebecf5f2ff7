// SPDX-License-Identifier: MIT
// Base64, for image data inside documents.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)

// Decodes length bytes of text and returns the number of bytes written. dst needs three bytes for
// every four digits and three more. A null text that has a length, or a null destination, writes
// nothing and answers 0.
//
// Bytes that are no digits are skipped, but the value of one stays behind in the low six bits of
// the group, and a last group of k digits (1 to 3) writes k bytes, the last one holding the
// leftover bits. Pad characters therefore show up as extra bits, and an empty text writes one 0.
// The bytes ; [ \ ] ^ _ { | } ~ 0x7F and 0x80 to 0x86 count as digits.
int32_t MMdecodeBase64(const uint8_t* src, uint32_t length, uint8_t* dst);

#pragma GCC visibility pop
