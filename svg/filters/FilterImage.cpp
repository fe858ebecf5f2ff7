// SPDX-License-Identifier: MIT
#include "svg/filters/FilterImage.h"

#include "svg/filters/LinearLight.h"
#include "svg/filters/Remembering.h"

namespace KAVO {
namespace Svg {

namespace {

constexpr int kShifts[] = {16, 8, 0, 24}; // of the channels of a Texel in 0xAARRGGBB

} // namespace

FilterImage::FilterImage(const Picture& picture, const PixelArea& area, const PixelArea& part)
    : FilterImage(part, false)
{
    for (int y = part.top; y < part.bottom; ++y) {
        Texel* texel = row(y);
        for (int x = part.left; x < part.right; ++x, ++texel) {
            const uint32_t pixel = picture.at(x - area.left, y - area.top);
            for (size_t channel = 0; channel < 4; ++channel)
                (*texel)[channel] = static_cast<uint16_t>((pixel >> kShifts[channel] & 0xFF) * 257);
        }
    }
}

void FilterImage::convert(bool linear)
{
    if (linear == linear_) return;
    linear_ = linear;
    const LightCurve& curve = linear ? LightCurve::toLinear() : LightCurve::toSrgb();
    auto converted = remembering<Texel>([&curve](Texel texel) {
        const uint32_t alpha = texel[kAlpha];
        const bool isColoured = alpha != 0 && (texel[0] | texel[1] | texel[2]) != 0;
        for (size_t channel = 0; isColoured && channel < kAlpha; ++channel)
            texel[channel] = alpha == 65535 ? curve(texel[channel])
                                            : times(curve(separated(texel[channel], alpha)), alpha);
        return texel;
    });
    for (Texel& texel : texels_)
        texel = converted(texel);
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

PixelArea filledPart(const Picture& picture, const PixelArea& area)
{
    PixelArea filled;
    for (int y = 0; y < picture.height; ++y) {
        const auto row = picture.pixels.begin() + static_cast<std::ptrdiff_t>(y) * picture.width;
        const auto isFilled = [](uint32_t pixel) { return pixel != 0; };
        const auto first = std::find_if(row, row + picture.width, isFilled);
        if (first == row + picture.width) continue;
        int last = picture.width - 1;
        while (row[last] == 0)
            --last;
        const int left = static_cast<int>(first - row);
        filled = filled.around({left, y, last + 1, y + 1});
    }
    return filled.moved(area.left, area.top);
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
