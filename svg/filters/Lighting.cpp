// SPDX-License-Identifier: MIT
#include "svg/filters/Lighting.h"

namespace KAVO {
namespace Svg {

namespace {

Vector operator-(const Vector& a, const Vector& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

double dot(const Vector& a, const Vector& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// Of length 1, or 0 when it has none.
Vector normalised(const Vector& v)
{
    const double length = std::sqrt(dot(v, v));
    return length > 0 ? Vector{v.x / length, v.y / length, v.z / length} : Vector{};
}

class Lit : public Effect {
public:
    explicit Lit(const Lighting& lighting)
        : lighting_(lighting), axis_(normalised(lighting.light.pointsAt - lighting.light.place))
    {
    }

    double cost() const override { return 4; }
    PixelArea needs(const PixelArea& wanted) const override { return wanted.widened(1, 1); }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const PixelArea& area = result.area();
        const Texel colour = texelOf(lighting_.colour | 0xFF000000, result.isLinear());
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x)
                result.row(y)[x - area.left] = lit(*inputs[0], x, y, colour);
    }

private:
    Texel lit(const FilterImage& input, int x, int y, const Texel& colour) const
    {
        const double height = lighting_.surfaceScale * input.at(x, y)[kAlpha] / 65535;
        const Vector point{x + 0.5, y + 0.5, height};
        const Light& light = lighting_.light;
        const Vector towards =
            light.kind == Light::Distant ? light.place : normalised(light.place - point);
        const double strength = strengthOf(towards) * reflected(normal(input, x, y), towards);
        Texel result;
        uint16_t most = 0;
        for (size_t i = 0; i < kAlpha; ++i) {
            const double value = std::min(1.0, strength * colour[i] / 65535);
            result[i] = static_cast<uint16_t>(std::lround(65535 * value));
            most = std::max(most, result[i]);
        }
        result[kAlpha] = lighting_.specular ? most : uint16_t{65535};
        return result;
    }

    // Of a spot: less away from its axis, nothing outside of its cone.
    double strengthOf(const Vector& towards) const
    {
        if (lighting_.light.kind != Light::Spot) return 1;
        const double cosine = -dot(towards, axis_);
        if (cosine <= 0 || cosine < lighting_.light.leastCosine) return 0;
        return std::pow(cosine, lighting_.light.exponent);
    }

    // The eye is far above.
    double reflected(const Vector& normal, const Vector& towards) const
    {
        if (!lighting_.specular) return std::max(0.0, lighting_.constant * dot(normal, towards));
        const double cosine = dot(normal, normalised({towards.x, towards.y, towards.z + 1}));
        return cosine > 0 ? lighting_.constant * std::pow(cosine, lighting_.exponent) : 0;
    }

    // From the slopes across the pixels beside and above it; where one is missing, the pixel itself
    // takes its place. The standard counts slopes twice.
    Vector normal(const FilterImage& input, int x, int y) const
    {
        const PixelArea& edges = lighting_.edges;
        const int left = std::max(x - 1, edges.left);
        const int right = std::min(x + 1, edges.right - 1);
        const int top = std::max(y - 1, edges.top);
        const int bottom = std::min(y + 1, edges.bottom - 1);
        const auto alpha = [&](int column, int row) {
            return static_cast<double>(input.at(column, row)[kAlpha]);
        };
        double acrossColumns = 0;
        double weights = 0;
        for (int row = top; row <= bottom; ++row) {
            const int weight = row == y ? 2 : 1;
            acrossColumns += weight * (alpha(right, row) - alpha(left, row));
            weights += weight;
        }
        const double slopeX = right > left ? acrossColumns / weights / (right - left) : 0;
        double acrossRows = 0;
        weights = 0;
        for (int column = left; column <= right; ++column) {
            const int weight = column == x ? 2 : 1;
            acrossRows += weight * (alpha(column, bottom) - alpha(column, top));
            weights += weight;
        }
        const double slopeY = bottom > top ? acrossRows / weights / (bottom - top) : 0;
        const double scale = -2 * lighting_.surfaceScale / 65535;
        return normalised({scale * slopeX, scale * slopeY, 1});
    }

    Lighting lighting_;
    Vector axis_; // of a spot
};

} // namespace

EffectPointer makeLighting(const Lighting& lighting)
{
    return std::make_unique<Lit>(lighting);
}

} // namespace Svg
} // namespace KAVO
