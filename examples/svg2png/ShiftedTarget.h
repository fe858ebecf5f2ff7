// SPDX-License-Identifier: MIT
// A target in whose pixels the library finds the right background.
#pragma once

#include "common/Picture.h"
#include "graphics2d/MMContext2D.h"
#include "svg2png/Affine.h"
#include "svg2png/ClipGuard.h"

// Gradients, patterns and text mix each pixel with the background of the pixel to its right, so
// that every layer of theirs would move what lies under it by a pixel. While an object of this
// class lives, the context draws into a copy that is moved to the right by one, in the part of the
// clip rectangle inside the box, with all alpha bytes 0; every paint raises those of the pixels
// that it draws, which are then taken over.
class ShiftedTarget {
public:
    // shadow is memory for the copy, kept by the caller from one use to the next.
    ShiftedTarget(KAVO::Graphics2D::MMContext2D& context, Picture& picture, Picture& shadow,
                  const Box& deviceBox);
    ~ShiftedTarget();
    ShiftedTarget(const ShiftedTarget&) = delete;
    ShiftedTarget& operator=(const ShiftedTarget&) = delete;

private:
    ClipGuard clip_;
    KAVO::Graphics2D::MMContext2D& context_;
    Picture& picture_;
    Picture& shadow_;
    int left_;
    int top_;
    int right_;
    int bottom_;
};
