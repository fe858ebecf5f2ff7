// SPDX-License-Identifier: MIT
// A target in whose pixels the library finds the right background.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "svg/geometry/Affine.h"
#include "svg/render/ClipGuard.h"

#include <vector>

namespace KAVO {
namespace Svg {

// Gradients, patterns and text mix each pixel with the background of the pixel to its right, so
// that every layer of theirs would move what lies under it by a pixel. While an object of this
// class lives, the context draws into a copy that is moved to the right by one, in the part of the
// clip rectangle inside the box, with all alpha bytes 0; every paint raises those of the pixels
// that it draws, which are then taken over.
class ShiftedTarget {
public:
    // memory is for the copy, kept by the caller from one use to the next.
    ShiftedTarget(Graphics2D::MMContext2D& context, std::vector<Pixel>& memory,
                  const Box& deviceBox);
    ~ShiftedTarget();
    ShiftedTarget(const ShiftedTarget&) = delete;
    ShiftedTarget& operator=(const ShiftedTarget&) = delete;

private:
    ClipGuard clip_;
    Graphics2D::MMContext2D& context_;
    MMPixmap target_; // the context's own
    int left_;
    int top_;
    int right_;
    int bottom_;
};

} // namespace Svg
} // namespace KAVO
