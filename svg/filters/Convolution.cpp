// SPDX-License-Identifier: MIT
#include "svg/filters/Convolution.h"

namespace KAVO {
namespace Svg {

namespace {

constexpr double kTapsOfAPixel = 8; // cost as much as another primitive's pixel

int wrapped(int value, int first, int length)
{
    const int rest = (value - first) % length;
    return first + (rest < 0 ? rest + length : rest);
}

class Convolve : public Effect {
public:
    explicit Convolve(Convolution convolution) : c_(std::move(convolution))
    {
        for (const double factor : c_.factors)
            factors_.push_back(std::llround(std::clamp(factor, -1e6, 1e6) * 65536));
        bias_ = std::llround(std::clamp(c_.bias, -1e6, 1e6) * 65536);
    }

    double cost() const override
    {
        return 1 + static_cast<double>(factors_.size()) / kTapsOfAPixel;
    }

    PixelArea needs(const PixelArea& wanted) const override
    {
        if (c_.edgeMode == EdgeMode::Wrap) return c_.edges;
        const PixelArea reached = {wanted.left - c_.targetX, wanted.top - c_.targetY,
                                   wanted.right - c_.targetX + c_.columns - 1,
                                   wanted.bottom - c_.targetY + c_.rows - 1};
        if (c_.edgeMode == EdgeMode::None || c_.edges.empty()) return reached;
        return {clampedX(reached.left), clampedY(reached.top), clampedX(reached.right - 1) + 1,
                clampedY(reached.bottom - 1) + 1};
    }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const PixelArea& area = result.area();
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x)
                result.row(y)[x - area.left] = mean(*inputs[0], x, y);
    }

private:
    int clampedX(int x) const { return std::clamp(x, c_.edges.left, c_.edges.right - 1); }
    int clampedY(int y) const { return std::clamp(y, c_.edges.top, c_.edges.bottom - 1); }

    Texel at(const FilterImage& input, int x, int y) const
    {
        const PixelArea& edges = c_.edges;
        if (c_.edgeMode == EdgeMode::None || edges.empty()) return input.at(x, y);
        if (c_.edgeMode == EdgeMode::Duplicate) return input.at(clampedX(x), clampedY(y));
        return input.at(wrapped(x, edges.left, edges.width()),
                        wrapped(y, edges.top, edges.height()));
    }

    Texel mean(const FilterImage& input, int x, int y) const
    {
        const Texel own = input.at(x, y);
        const int64_t bias = bias_ * (c_.preservesAlpha ? 65535 : own[kAlpha]) + 0x8000;
        std::array<int64_t, 4> sums = {bias, bias, bias, bias};
        size_t i = 0;
        for (int row = 0; row < c_.rows; ++row)
            for (int column = 0; column < c_.columns; ++column, ++i) {
                if (factors_[i] == 0) continue;
                const Texel texel = at(input, x - c_.targetX + column, y - c_.targetY + row);
                for (size_t channel = 0; channel < 4; ++channel)
                    sums[channel] += factors_[i] * valueOf(texel, channel);
            }
        Texel result;
        for (size_t channel = 0; channel < 4; ++channel)
            result[channel] = clamped(sums[channel] >> 16);
        if (c_.preservesAlpha) result[kAlpha] = own[kAlpha];
        for (size_t channel = 0; channel < kAlpha; ++channel)
            result[channel] = c_.preservesAlpha ? times(result[channel], result[kAlpha])
                                                : std::min(result[channel], result[kAlpha]);
        return result;
    }

    // With the alpha preserved, colours are not premultiplied.
    uint16_t valueOf(const Texel& texel, size_t channel) const
    {
        if (!c_.preservesAlpha || channel == kAlpha || texel[kAlpha] == 0) return texel[channel];
        return separated(texel[channel], texel[kAlpha]);
    }

    Convolution c_;
    std::vector<int64_t> factors_; // 48.16
    int64_t bias_;
};

} // namespace

EffectPointer makeConvolution(Convolution convolution)
{
    return std::make_unique<Convolve>(std::move(convolution));
}

} // namespace Svg
} // namespace KAVO
