// SPDX-License-Identifier: MIT
// Integer square roots.
#include "math/WideMath.h"

namespace KAVO {

uint32_t integerRoot(uint64_t v)
{
    uint64_t root = 0;
    for (uint64_t bit = uint64_t{1} << 31; bit != 0; bit >>= 1) {
        const uint64_t trial = root | bit;
        if (trial * trial <= v) root = trial;
    }
    return static_cast<uint32_t>(root);
}

} // namespace KAVO
