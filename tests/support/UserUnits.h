// SPDX-License-Identifier: MIT
// Numbers and points of tests as a reader writes them.
#pragma once

#include "math/FixedLiteral.h"
#include "math/MMPoint2D.h"

// The 16.16 number, cut toward 0.
constexpr KAVO::Fixed fx(double v)
{
    return static_cast<KAVO::Fixed>(v * 65536);
}

constexpr MMPoint2D at(double x, double y)
{
    return {fx(x), fx(y)};
}
