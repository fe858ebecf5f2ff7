// SPDX-License-Identifier: MIT
// White space of text as documents write it. Internal.
#pragma once

#include <cstdint>

namespace KAVO {
namespace Graphics2D {

constexpr uint16_t kSpace = 32; // the last of what is white space

// What MMContext2D::ParseText makes of a text, one code unit after the other.
class SpaceFilter {
public:
    explicit SpaceFilter(bool preserves) : preserves_(preserves) {}

    // False when the unit is left out. One that is kept may become a space.
    bool keeps(uint16_t& unit)
    {
        if (unit <= kSpace) return keepsBlank(unit);
        afterSpace_ = false;
        return true;
    }

private:
    bool keepsBlank(uint16_t& unit);

    bool preserves_;
    bool afterSpace_ = true; // blanks at the beginning go, too; dropped line ends do not change it
};

} // namespace Graphics2D
} // namespace KAVO
