// SPDX-License-Identifier: MIT
// A clip rectangle for the length of a scope.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Svg {

// Restores the clip rectangle at the end of a scope.
class ClipGuard {
public:
    explicit ClipGuard(KAVO::Graphics2D::MMContext2D& context)
        : context_(context), left_(context.clipLeft), top_(context.clipTop),
          right_(context.clipRight), bottom_(context.clipBottom)
    {
    }
    ~ClipGuard()
    {
        context_.clipLeft = left_;
        context_.clipTop = top_;
        context_.clipRight = right_;
        context_.clipBottom = bottom_;
    }
    ClipGuard(const ClipGuard&) = delete;
    ClipGuard& operator=(const ClipGuard&) = delete;

private:
    KAVO::Graphics2D::MMContext2D& context_;
    int16_t left_;
    int16_t top_;
    int16_t right_;
    int16_t bottom_;
};

} // namespace Svg
} // namespace KAVO
