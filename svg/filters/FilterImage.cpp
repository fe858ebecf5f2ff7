// SPDX-License-Identifier: MIT
#include "svg/filters/FilterImage.h"

#include "svg/filters/LinearLight.h"

namespace KAVO {
namespace Svg {

namespace {

constexpr int kShifts[] = {16, 8, 0, 24}; // of the channels of a Texel in 0xAARRGGBB

} // namespace

FilterImage::FilterImage(const Picture& picture, const PixelArea& area) : FilterImage(area, false)
{
    for (size_t i = 0; i < texels_.size(); ++i) {
        for (size_t channel = 0; channel < 4; ++channel)
            texels_[i][channel] =
                static_cast<uint16_t>((picture.pixels[i] >> kShifts[channel] & 0xFF) * 257);
    }
}

void FilterImage::convert(bool linear)
{
    if (linear == linear_) return;
    linear_ = linear;
    const LightCurve& curve = linear ? LightCurve::toLinear() : LightCurve::toSrgb();
    for (Texel& texel : texels_) {
        const uint32_t alpha = texel[kAlpha];
        if (alpha == 0 || (texel[0] | texel[1] | texel[2]) == 0) continue;
        for (size_t channel = 0; channel < kAlpha; ++channel)
            texel[channel] = times(curve(separated(texel[channel], alpha)), alpha);
    }
}

Picture FilterImage::picture() const
{
    if (linear_) {
        FilterImage converted = *this;
        converted.convert(false);
        return converted.picture();
    }
    Picture result(area_.width(), area_.height(), 0);
    result.hasAlpha = true;
    for (size_t i = 0; i < texels_.size(); ++i) {
        const uint32_t alpha = texels_[i][kAlpha];
        if (alpha == 0) continue;
        uint32_t pixel = (alpha + 128) / 257 << 24;
        for (size_t channel = 0; channel < kAlpha; ++channel)
            pixel |= (separated(texels_[i][channel], alpha) + 128u) / 257 << kShifts[channel];
        result.pixels[i] = pixel;
    }
    return result;
}

Texel texelOf(uint32_t argb, bool linear)
{
    const uint32_t alpha = (argb >> 24) * 257;
    Texel result;
    result[kAlpha] = static_cast<uint16_t>(alpha);
    for (size_t channel = 0; channel < kAlpha; ++channel) {
        const auto value = static_cast<uint16_t>((argb >> kShifts[channel] & 0xFF) * 257);
        result[channel] = times(linear ? LightCurve::toLinear()(value) : value, alpha);
    }
    return result;
}

} // namespace Svg
} // namespace KAVO
