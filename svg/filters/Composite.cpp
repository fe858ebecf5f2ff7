// SPDX-License-Identifier: MIT
// Two images by the operators of Porter and Duff, or by arithmetic.
#include "svg/filters/Effect.h"

namespace KAVO {
namespace Svg {

namespace {

class Composite : public Effect {
public:
    Composite(CompositeOperator composite, const std::array<double, 4>& k) : operator_(composite)
    {
        for (size_t i = 0; i < k.size(); ++i)
            k_[i] = std::llround(std::clamp(k[i], -1e6, 1e6) * 65536);
    }

    PixelArea fills(const std::vector<PixelArea>& inputs, const PixelArea& wanted) const override
    {
        switch (operator_) {
        case CompositeOperator::In:
            return inputs[0].common(inputs[1]);
        case CompositeOperator::Out:
            return inputs[0];
        case CompositeOperator::Atop:
            return inputs[1];
        case CompositeOperator::Arithmetic:
            if (k_[3] > 0) return wanted; // also where both are transparent
            break;
        default:
            break;
        }
        return inputs[0].around(inputs[1]);
    }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const PixelArea& area = result.area();
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x) {
                const Texel above = inputs[0]->at(x, y);
                const Texel below = inputs[1]->at(x, y);
                result.row(y)[x - area.left] = operator_ == CompositeOperator::Arithmetic
                                                   ? calculated(above, below)
                                                   : combined(above, below);
            }
    }

private:
    // Both with the shares that the operator gives them.
    Texel combined(const Texel& above, const Texel& below) const
    {
        const uint32_t a = above[kAlpha];
        const uint32_t b = below[kAlpha];
        uint32_t shareAbove = 65535;
        uint32_t shareBelow = 65535;
        switch (operator_) {
        case CompositeOperator::Over:
            shareBelow = 65535 - a;
            break;
        case CompositeOperator::In:
            shareAbove = b, shareBelow = 0;
            break;
        case CompositeOperator::Out:
            shareAbove = 65535 - b, shareBelow = 0;
            break;
        case CompositeOperator::Atop:
            shareAbove = b, shareBelow = 65535 - a;
            break;
        case CompositeOperator::Xor:
            shareAbove = 65535 - b, shareBelow = 65535 - a;
            break;
        default:
            break; // lighter: both as they are
        }
        Texel result;
        for (size_t i = 0; i < 4; ++i)
            result[i] = clamped(times(above[i], shareAbove) + times(below[i], shareBelow));
        return result;
    }

    Texel calculated(const Texel& above, const Texel& below) const
    {
        Texel result;
        for (size_t i = 0; i < 4; ++i) {
            const int64_t sum = k_[0] * times(above[i], below[i]) + k_[1] * above[i] +
                                k_[2] * below[i] + k_[3] * 65535 + 0x8000;
            result[i] = clamped(sum >> 16);
        }
        for (size_t i = 0; i < kAlpha; ++i)
            result[i] = std::min(result[i], result[kAlpha]);
        return result;
    }

    CompositeOperator operator_;
    std::array<int64_t, 4> k_; // 48.16
};

} // namespace

EffectPointer makeComposite(CompositeOperator composite, const std::array<double, 4>& k)
{
    return std::make_unique<Composite>(composite, k);
}

} // namespace Svg
} // namespace KAVO
