// SPDX-License-Identifier: MIT
// How a transform stretches.
#include "math/LinearPart.h"

#include "math/UnitVector.h"
#include "math/WideMath.h"

namespace KAVO {

Stretch stretchOf(const LinearPart& m)
{
    // The singular values are half the sum and half the difference of two lengths.
    const int64_t turning = polarOf(int64_t{m.a} + m.d, int64_t{m.b} - m.c).length;
    const int64_t mirroring = polarOf(int64_t{m.a} - m.d, int64_t{m.b} + m.c).length;
    return {(turning + mirroring) / 2, absolute(turning - mirroring) / 2};
}

} // namespace KAVO
