// SPDX-License-Identifier: MIT
// Moves the pixels of the first input by what two channels of the second one say.
#include "svg/filters/Effect.h"

namespace KAVO {
namespace Svg {

namespace {

class Displacement : public Effect {
public:
    Displacement(const Affine& scale, size_t channelX, size_t channelY)
        : scale_(scale), channelX_(channelX), channelY_(channelY),
          reach_(static_cast<int>(std::ceil(scale.norm() / 2)))
    {
    }

    PixelArea needs(const PixelArea& wanted) const override
    {
        return wanted.widened(reach_, reach_);
    }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const PixelArea& area = result.area();
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x) {
                const Texel shift = inputs[1]->at(x, y);
                const Point moved = scale_.mapVector(
                    {value(shift, channelX_) - 0.5, value(shift, channelY_) - 0.5});
                result.row(y)[x - area.left] =
                    inputs[0]->at(x + static_cast<int>(std::lround(moved.x)),
                                  y + static_cast<int>(std::lround(moved.y)));
            }
    }

private:
    // Not premultiplied, 0 to 1.
    static double value(const Texel& texel, size_t channel)
    {
        if (channel == kAlpha || texel[kAlpha] == 0) return texel[channel] / 65535.0;
        return separated(texel[channel], texel[kAlpha]) / 65535.0;
    }

    Affine scale_; // in device pixels
    size_t channelX_;
    size_t channelY_;
    int reach_; // pixels
};

} // namespace

EffectPointer makeDisplacement(const Affine& scale, size_t channelX, size_t channelY)
{
    return std::make_unique<Displacement>(scale, channelX, channelY);
}

} // namespace Svg
} // namespace KAVO
