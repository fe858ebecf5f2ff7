// SPDX-License-Identifier: MIT
// Pixels for a context to draw into, and the rules that it draws by.
#pragma once

#include "graphics2d/convenience/MMContextState.h"

// As setTarget, which chooses the refined rules, but for the classic ones.
inline void classicTarget(KAVO::Graphics2D::MMContext2D& context, KAVO::Pixel* pixels,
                          int32_t width, int32_t height)
{
    KAVO::Graphics2D::setTarget(context, pixels, width, height);
    context.refined = 0;
}
