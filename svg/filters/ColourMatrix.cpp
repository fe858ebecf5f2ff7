// SPDX-License-Identifier: MIT
// Colours by a matrix.
#include "svg/filters/Effect.h"
#include "svg/filters/Remembering.h"

namespace KAVO {
namespace Svg {

namespace {

// In the space that the image is in.
constexpr double kRed = 0.2126;
constexpr double kGreen = 0.7152;
constexpr double kBlue = 0.0722;

class Matrix : public Effect {
public:
    explicit Matrix(const ColourMatrix& matrix)
    {
        // Factors beyond a thousand make no difference between 0 and 1 that can be seen.
        for (size_t i = 0; i < matrix.size(); ++i)
            factors_[i] = std::llround(std::clamp(matrix[i], -1e6, 1e6) * 65536);
    }

    PixelArea fills(const std::vector<PixelArea>& inputs, const PixelArea& wanted) const override
    {
        return factors_.back() > 0 ? wanted : inputs[0]; // the alpha that it gives to no colour
    }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const PixelArea& area = result.area();
        auto to = remembering<Texel>([this](const Texel& from) { return changed(from); });
        for (int y = area.top; y < area.bottom; ++y) {
            Texel* texel = result.row(y);
            for (int x = area.left; x < area.right; ++x)
                *texel++ = to(inputs[0]->at(x, y));
        }
    }

private:
    Texel changed(const Texel& texel) const
    {
        const uint32_t alpha = texel[kAlpha];
        std::array<int64_t, 4> from = {0, 0, 0, alpha};
        if (alpha != 0) {
            for (size_t channel = 0; channel < kAlpha; ++channel)
                from[channel] = separated(texel[channel], alpha);
        }
        Texel to;
        for (size_t channel = 0; channel < 4; ++channel) {
            const int64_t* row = &factors_[channel * 5];
            int64_t sum = row[4] * 65535 + 0x8000;
            for (size_t i = 0; i < 4; ++i)
                sum += row[i] * from[i];
            to[channel] = clamped(sum >> 16);
        }
        for (size_t channel = 0; channel < kAlpha; ++channel)
            to[channel] = times(to[channel], to[kAlpha]);
        return to;
    }

    std::array<int64_t, 20> factors_; // 48.16
};

} // namespace

EffectPointer makeColourMatrix(const ColourMatrix& matrix)
{
    return std::make_unique<Matrix>(matrix);
}

// Each channel moves between the luminance and itself.
ColourMatrix saturating(double share)
{
    const double grey = 1 - share;
    return {kRed * grey + share,
            kGreen * grey,
            kBlue * grey,
            0,
            0,
            kRed * grey,
            kGreen * grey + share,
            kBlue * grey,
            0,
            0,
            kRed * grey,
            kGreen * grey,
            kBlue * grey + share,
            0,
            0,
            0,
            0,
            0,
            1,
            0};
}

// A turn about the axis of greys that keeps the luminance, as the standard rounds it.
ColourMatrix turningHue(double degrees)
{
    const double angle = std::fmod(degrees, 360) * std::acos(-1.0) / 180;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {0.213 + c * 0.787 - s * 0.213,
            0.715 - c * 0.715 - s * 0.715,
            0.072 - c * 0.072 + s * 0.928,
            0,
            0,
            0.213 - c * 0.213 + s * 0.143,
            0.715 + c * 0.285 + s * 0.140,
            0.072 - c * 0.072 - s * 0.283,
            0,
            0,
            0.213 - c * 0.213 - s * 0.787,
            0.715 - c * 0.715 + s * 0.715,
            0.072 + c * 0.928 + s * 0.072,
            0,
            0,
            0,
            0,
            0,
            1,
            0};
}

ColourMatrix alphaFromLuminance()
{
    ColourMatrix matrix = {};
    matrix[15] = kRed;
    matrix[16] = kGreen;
    matrix[17] = kBlue;
    return matrix;
}

} // namespace Svg
} // namespace KAVO
