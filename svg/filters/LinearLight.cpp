// SPDX-License-Identifier: MIT
#include "svg/filters/LinearLight.h"

#include <algorithm>
#include <cmath>

namespace KAVO {
namespace Svg {

namespace {

double linearLight(double srgb)
{
    return srgb <= 0.04045 ? srgb / 12.92 : std::pow((srgb + 0.055) / 1.055, 2.4);
}

double srgbOf(double linear)
{
    return linear <= 0.0031308 ? linear * 12.92 : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

} // namespace

LightCurve::LightCurve(double (*curve)(double))
{
    for (size_t i = 0; i < points_.size(); ++i) {
        const double value = 65535 * curve(static_cast<double>(i) * 16 / 65535);
        points_[i] = static_cast<uint16_t>(std::min(65535.0, std::round(value)));
    }
}

const LightCurve& LightCurve::toLinear()
{
    static const LightCurve curve(linearLight);
    return curve;
}

const LightCurve& LightCurve::toSrgb()
{
    static const LightCurve curve(srgbOf);
    return curve;
}

} // namespace Svg
} // namespace KAVO
