// SPDX-License-Identifier: MIT
// Each pixel from those around it by a matrix of factors.
#pragma once

#include "svg/filters/Effect.h"

namespace KAVO {
namespace Svg {

enum class EdgeMode { Duplicate, Wrap, None };

struct Convolution {
    int columns = 3;
    int rows = 3;
    std::vector<double> factors; // row by row, for the pixels in this order, already divided
    int targetX = 1;             // the factor of the pixel itself
    int targetY = 1;
    double bias = 0; // added to each channel, times the pixel's alpha
    bool preservesAlpha = false;
    EdgeMode edgeMode = EdgeMode::Duplicate;
    PixelArea edges; // beyond which the edge mode decides
};

EffectPointer makeConvolution(Convolution convolution);

} // namespace Svg
} // namespace KAVO
