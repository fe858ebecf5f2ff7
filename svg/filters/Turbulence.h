// SPDX-License-Identifier: MIT
// Noise by gradients on a lattice, as the standard fixes it down to its random numbers.
#pragma once

#include "svg/filters/Effect.h"

namespace KAVO {
namespace Svg {

struct Turbulence {
    double frequencyX = 0; // of the first octave, per user unit; each octave doubles it
    double frequencyY = 0;
    int octaves = 1;
    int64_t seed = 0;
    bool fractal = false; // the sum itself, or else that of what it is away from 0
    bool stitches = false;
    Box tile;      // at whose edges the noise fits together, user space
    Affine toUser; // from device pixels
};

EffectPointer makeTurbulence(const Turbulence& turbulence);

} // namespace Svg
} // namespace KAVO
