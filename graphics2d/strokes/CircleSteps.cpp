// SPDX-License-Identifier: MIT
// Turns by equal steps.
#include "graphics2d/strokes/CircleSteps.h"

#include "math/WideMath.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr Degrees kGreatestStep = 45 * kFixedOne;

// Half turns of vast pens stop getting finer here: 0.1 degrees.
constexpr Degrees kSmallestStep = kFixedOne / 10;

constexpr int64_t kDegreesPerRadian = 3754936; // 180 / pi in 16.16

} // namespace

Degrees stepWithin(Fixed sagitta, int64_t radius)
{
    // The sagitta of a turn of x is radius * (1 - cos(x / 2)), a little below radius * x^2 / 8.
    if (radius <= sagitta) return kGreatestStep;
    const uint64_t square = (uint64_t{8} * static_cast<uint64_t>(sagitta) << 32) /
                            static_cast<uint64_t>(radius); // radians in 0.32
    const int64_t step = (int64_t{integerRoot(square)} * kDegreesPerRadian) >> 16;
    return static_cast<Degrees>(std::clamp<int64_t>(step, kSmallestStep, kGreatestStep));
}

CircleSteps::CircleSteps(Degrees angle, Degrees greatestStep)
    : count(static_cast<uint32_t>(std::max(1, (angle + greatestStep - 1) / greatestStep))),
      rotation(rotationBy(angle / static_cast<Degrees>(count)))
{
}

} // namespace Graphics2D
} // namespace KAVO
