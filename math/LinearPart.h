// SPDX-License-Identifier: MIT
// The linear part of a transform, and how it stretches. Internal.
#pragma once

#include "math/Matrix2D.h"

namespace KAVO {

// Maps (x, y) to (a x + c y, b x + d y).
struct LinearPart {
    Fixed a;
    Fixed b;
    Fixed c;
    Fixed d;
};

constexpr bool operator==(const LinearPart& m, const LinearPart& n)
{
    return m.a == n.a && m.b == n.b && m.c == n.c && m.d == n.d;
}

constexpr LinearPart linearPartOf(const Matrix2D& m)
{
    return {m.a, m.b, m.c, m.d};
}

// True when outlines come out turning the other way round.
constexpr bool isMirroring(const LinearPart& m)
{
    return int64_t{m.a} * m.d < int64_t{m.b} * m.c;
}

// The greatest factor by which a vector is stretched, and the smallest, 16.16: the singular values.
struct Stretch {
    int64_t greatest;
    int64_t smallest;
};

Stretch stretchOf(const LinearPart& m);

} // namespace KAVO
