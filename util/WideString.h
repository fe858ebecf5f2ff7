// SPDX-License-Identifier: MIT
// Strings of 16-bit code units (UTF-16), ended by 0, and their making from UTF-8.
//
// Names are exported unmangled. A null string or destination does nothing and answers 0 or null.
// Nothing else is validated: what each function does with odd input is part of its contract.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)

extern "C" {

// Code units before the 0.
int32_t MMwsstrlen(const uint16_t* s);

// 0 when equal, -1 when a ends before b, otherwise a's code unit less b's at the first difference;
// so a longer a gives its first extra code unit.
int32_t MM_wstrcmp(const uint16_t* a, const uint16_t* b);

// The same for at most n code units; a negative n counts as 0.
int32_t MM_wstrncmp(const uint16_t* a, const uint16_t* b, int32_t n);

// Copies at most n code units. A shorter src fills the rest with 0; one of n or more leaves dst
// without a terminator. A negative n counts as 0. Returns dst.
uint16_t* MM_wstrncpy(uint16_t* dst, const uint16_t* src, int32_t n);

// The first c in s, or the terminating 0 when there is none.
uint16_t* MM_wstrchr(uint16_t* s, uint16_t c);

// Decodes length bytes of UTF-8 into a new string that the caller releases with free(); null when
// out of memory. The lead byte alone decides: below 0x80 one byte, below 0xE0 two, from there on
// three (a four-byte sequence comes out as a code unit without its top bits, and its last byte
// starts the next one). What is missing at the end reads as 0.
uint16_t* MMstrUtf8ToWs(const uint8_t* utf8, uint32_t length);

} // extern "C"

#pragma GCC visibility pop
