// SPDX-License-Identifier: MIT
#include "graphics2d/text/TextWhitespace.h"

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint16_t kTab = 9;
constexpr uint16_t kLineFeed = 10;
constexpr uint16_t kCarriageReturn = 13;

bool isLineEnd(uint16_t c)
{
    return c == kLineFeed || c == kCarriageReturn;
}

bool isBlank(uint16_t c)
{
    return c == kTab || c == kSpace;
}

} // namespace

bool SpaceFilter::keepsBlank(uint16_t& unit)
{
    if (preserves_) {
        if (unit == kTab || unit == kLineFeed) unit = kSpace;
        return unit != kCarriageReturn;
    }
    if (isLineEnd(unit)) return false;
    const bool blank = isBlank(unit);
    if (blank && afterSpace_) return false;
    if (blank) unit = kSpace;
    afterSpace_ = blank;
    return true;
}

void MMContext2D::ParseText(uint16_t* dst, const uint16_t* src)
{
    if (dst == nullptr || src == nullptr) return;
    SpaceFilter spaces(preserveSpace != 0);
    for (; *src != 0; ++src) {
        uint16_t unit = *src;
        if (spaces.keeps(unit)) *dst++ = unit;
    }
    *dst = 0;
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
