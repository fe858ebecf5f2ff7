// SPDX-License-Identifier: MIT
// The light that a surface throws back whose height is the alpha of the input.
#pragma once

#include "svg/filters/Effect.h"

namespace KAVO {
namespace Svg {

struct Vector {
    double x = 0;
    double y = 0;
    double z = 0;
};

struct Light {
    enum Kind { Distant, Point, Spot };
    Kind kind = Distant;
    Vector place;           // of a distant light: the direction towards it, of length 1
    Vector pointsAt;        // of a spot
    double exponent = 1;    // of a spot
    double leastCosine = 0; // of a spot: of the angle between its axis and a ray
};

struct Lighting {
    bool specular = false;
    double surfaceScale = 1; // pixels of height for an alpha of 1
    double constant = 1;
    double exponent = 1; // of specular light
    uint32_t colour = 0xFFFFFFFF;
    Light light;
    PixelArea edges; // what lies beyond is no part of the surface
};

EffectPointer makeLighting(const Lighting& lighting);

} // namespace Svg
} // namespace KAVO
