// SPDX-License-Identifier: MIT
#include "svg/values/ColourSpaces.h"

#include <cmath>

namespace KAVO {
namespace Svg {

namespace {

using Matrix = std::array<Rgb, 3>;

Rgb operator*(const Matrix& m, const Rgb& v)
{
    Rgb result{};
    for (size_t row = 0; row < 3; ++row) {
        for (size_t column = 0; column < 3; ++column)
            result[row] += m[row][column] * v[column];
    }
    return result;
}

// The curve of sRGB and its inverse, mirrored for negative light.
double encode(double light)
{
    const double size = std::fabs(light);
    const double value = size <= 0.0031308 ? 12.92 * size : 1.055 * std::pow(size, 1 / 2.4) - 0.055;
    return std::copysign(value, light);
}

double decode(double value)
{
    const double size = std::fabs(value);
    const double light = size <= 0.04045 ? size / 12.92 : std::pow((size + 0.055) / 1.055, 2.4);
    return std::copysign(light, value);
}

Rgb encode(const Rgb& light)
{
    return {encode(light[0]), encode(light[1]), encode(light[2])};
}

// From the light of CIE XYZ with the white point D65 to that of sRGB's primaries.
constexpr Matrix kXyzToSrgb{{{3.2409699419, -1.5373831776, -0.4986107603},
                             {-0.9692436363, 1.8759675015, 0.0415550574},
                             {0.0556300797, -0.2039769589, 1.0569715142}}};
// Bradford's adaptation of D50 to D65.
constexpr Matrix kD50ToD65{{{0.9554734527, -0.0230985368, 0.0632593087},
                            {-0.0283697069, 1.0099954580, 0.0210413990},
                            {0.0123140017, -0.0205076964, 1.3303659366}}};
constexpr Rgb kD50{0.9642956764, 1, 0.8251046025};
constexpr Matrix kP3ToXyz{{{0.4865709486, 0.2656676932, 0.1982172852},
                           {0.2289745641, 0.6917385218, 0.0792869141},
                           {0, 0.0451133819, 1.0439443689}}};

} // namespace

Rgb labToSrgb(double lightness, double a, double b)
{
    constexpr double kEpsilon = 216.0 / 24389;
    constexpr double kKappa = 24389.0 / 27;
    const double fy = (lightness + 16) / 116;
    const auto light = [&](double f) {
        const double cube = f * f * f;
        return cube > kEpsilon ? cube : (116 * f - 16) / kKappa;
    };
    const double y = lightness > kKappa * kEpsilon ? fy * fy * fy : lightness / kKappa;
    const Rgb xyz{light(fy + a / 500) * kD50[0], y, light(fy - b / 200) * kD50[2]};
    return encode(kXyzToSrgb * (kD50ToD65 * xyz));
}

Rgb oklabToSrgb(double lightness, double a, double b)
{
    constexpr Matrix kToCones{{{1, 0.3963377774, 0.2158037573},
                               {1, -0.1055613458, -0.0638541728},
                               {1, -0.0894841775, -1.2914855480}}};
    constexpr Matrix kConesToSrgb{{{4.0767416621, -3.3077115913, 0.2309699292},
                                   {-1.2684380046, 2.6097574011, -0.3413193965},
                                   {-0.0041960863, -0.7034186147, 1.7076147010}}};
    Rgb cones = kToCones * Rgb{lightness, a, b};
    for (double& cone : cones)
        cone = cone * cone * cone;
    return encode(kConesToSrgb * cones);
}

bool spaceToSrgb(std::string_view space, const Rgb& components, Rgb& result)
{
    if (space == "srgb")
        result = components;
    else if (space == "srgb-linear")
        result = encode(components);
    else if (space == "display-p3")
        result = encode(kXyzToSrgb * (kP3ToXyz * Rgb{decode(components[0]), decode(components[1]),
                                                     decode(components[2])}));
    else
        return false;
    return true;
}

} // namespace Svg
} // namespace KAVO
