// SPDX-License-Identifier: MIT
// Each channel by a function of its own.
#include "svg/filters/Effect.h"

namespace KAVO {
namespace Svg {

namespace {

// Values of a function that have been asked for.
class KnownValues {
public:
    explicit KnownValues(const TransferFunction& function)
        : function_(function), values_(function.kind == TransferFunction::Identity ? 0 : 65536, -1)
    {
    }

    uint16_t operator()(uint16_t value)
    {
        if (values_.empty()) return value;
        int32_t& known = values_[value];
        if (known < 0) known = clamped(std::llround(65535 * function_(value / 65535.0)));
        return static_cast<uint16_t>(known);
    }

private:
    const TransferFunction& function_;
    std::vector<int32_t> values_; // below 0: not yet
};

class ComponentTransfer : public Effect {
public:
    explicit ComponentTransfer(std::array<TransferFunction, 4> functions)
        : functions_(std::move(functions))
    {
    }

    PixelArea fills(const std::vector<PixelArea>& inputs, const PixelArea& wanted) const override
    {
        return functions_[kAlpha](0) > 0 ? wanted : inputs[0];
    }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        KnownValues known[] = {KnownValues(functions_[0]), KnownValues(functions_[1]),
                               KnownValues(functions_[2]), KnownValues(functions_[3])};
        const PixelArea& area = result.area();
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x) {
                const Texel from = inputs[0]->at(x, y);
                const uint16_t alpha = from[kAlpha];
                Texel& to = result.row(y)[x - area.left];
                to[kAlpha] = known[kAlpha](alpha);
                for (size_t i = 0; i < kAlpha; ++i) {
                    const uint16_t value = alpha == 0 ? uint16_t{0} : separated(from[i], alpha);
                    to[i] = times(known[i](value), to[kAlpha]);
                }
            }
    }

private:
    std::array<TransferFunction, 4> functions_;
};

} // namespace

// From 0 to 1, whatever the parameters.
double TransferFunction::operator()(double value) const
{
    double result = value;
    const auto last = static_cast<double>(values.size()) - 1;
    if (kind == Linear) result = slope * value + intercept;
    if (kind == Gamma) result = amplitude * std::pow(value, exponent) + intercept;
    if (kind == Discrete && !values.empty())
        result = values[static_cast<size_t>(std::min(last, value * (last + 1)))];
    if (kind == Table && !values.empty()) {
        const auto step = static_cast<size_t>(std::min(last, value * last));
        const double next = values[std::min(step + 1, values.size() - 1)];
        result = values[step] + (value * last - static_cast<double>(step)) * (next - values[step]);
    }
    return result >= 0 ? std::min(result, 1.0) : 0; // also for what is no number
}

EffectPointer makeComponentTransfer(std::array<TransferFunction, 4> functions)
{
    return std::make_unique<ComponentTransfer>(std::move(functions));
}

} // namespace Svg
} // namespace KAVO
