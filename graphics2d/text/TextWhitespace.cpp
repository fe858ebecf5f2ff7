// SPDX-License-Identifier: MIT
// White space of text as documents write it.
#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint16_t kTab = 9;
constexpr uint16_t kLineFeed = 10;
constexpr uint16_t kCarriageReturn = 13;
constexpr uint16_t kSpace = 32;

bool isLineEnd(uint16_t c)
{
    return c == kLineFeed || c == kCarriageReturn;
}

bool isBlank(uint16_t c)
{
    return c == kTab || c == kSpace;
}

void keepSpace(uint16_t* dst, const uint16_t* src)
{
    for (; *src != 0; ++src) {
        if (*src == kCarriageReturn) continue;
        *dst++ = *src == kTab || *src == kLineFeed ? kSpace : *src;
    }
    *dst = 0;
}

void collapseSpace(uint16_t* dst, const uint16_t* src)
{
    while (isBlank(*src) || isLineEnd(*src))
        ++src;
    bool afterSpace = false; // dropped line ends do not change it
    for (; *src != 0; ++src) {
        if (isLineEnd(*src)) continue;
        const bool blank = isBlank(*src);
        if (blank && afterSpace) continue;
        *dst++ = blank ? kSpace : *src;
        afterSpace = blank;
    }
    *dst = 0;
}

} // namespace

void MMContext2D::ParseText(uint16_t* dst, const uint16_t* src)
{
    if (dst == nullptr || src == nullptr) return;
    if (preserveSpace != 0)
        keepSpace(dst, src);
    else
        collapseSpace(dst, src);
}

void ParseText2(uint16_t* dst, const uint16_t* src)
{
    if (dst == nullptr || src == nullptr) return;
    bool afterSpace = false;
    for (; *src != 0; ++src) {
        const bool space = isBlank(*src) || isLineEnd(*src);
        if (space && afterSpace) continue;
        *dst++ = space ? kSpace : *src;
        afterSpace = space;
    }
    *dst = 0;
}

} // namespace Graphics2D
} // namespace KAVO
