// SPDX-License-Identifier: MIT
// White space of text as documents write it. Internal.
#pragma once

#include <cstdint>

namespace KAVO {
namespace Graphics2D {

// What MMContext2D::ParseText makes of a text, one code unit after the other.
class SpaceFilter {
public:
    explicit SpaceFilter(bool preserves) : preserves_(preserves) {}

    // False when the unit is left out. One that is kept may become a space.
    bool keeps(uint16_t& unit);

private:
    bool preserves_;
    bool afterSpace_ = true; // blanks at the beginning go, too; dropped line ends do not change it
};

} // namespace Graphics2D
} // namespace KAVO
